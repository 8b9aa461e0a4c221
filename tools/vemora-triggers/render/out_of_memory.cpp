// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "tools/vemora-triggers/render/out_of_memory.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <initializer_list>

#include "tools/vemora-triggers/process/outcome_output.h"

namespace kuv::vemora::tools {
namespace {

/// Texts joined in a fixed buffer, so that they are written at once and without allocating memory.
class Message {
 public:
  Message(std::initializer_list<const char*> parts) noexcept {
    for (const char* const part : parts) {
      const std::size_t size = std::min(std::strlen(part), text_.size() - size_);
      std::memcpy(text_.data() + size_, part, size);
      size_ += size;
    }
  }

  void print_to(int descriptor) const noexcept { write_whole(descriptor, text_.data(), size_); }

 private:
  std::array<char, 1024> text_{};
  std::size_t size_ = 0;
};

}  // namespace

void print_out_of_memory(bool json, bool of_a_pass, const char* stored) noexcept {
  const bool nothing = *stored == '\0';
  if (!json) {
    Message(
        {"vemora-triggers: out of memory\n", nothing ? "" : "note: ", stored, nothing ? "" : "\n"})
        .print_to(STDERR_FILENO);
    return;
  }
  // What a pass changed and reconciled is not known here.
  Message({"{", of_a_pass ? R"("changes":null,)" : "",
           R"("errors":[{"category":1,"message":"out of memory"}],)",
           of_a_pass ? R"("reconciled":null,)" : "", nothing ? "" : R"("remarks":[")", stored,
           nothing ? "" : R"("],)", of_a_pass ? R"("state":null,)" : "", "\"success\":false}\n"})
      .print_to(STDOUT_FILENO);
}

}  // namespace kuv::vemora::tools
