// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "tools/vemora-triggers/process/outcome_output.h"

#include <unistd.h>

#include <cerrno>
#include <iostream>

namespace kuv::vemora::tools {

Outcome_Output::Outcome_Output() : before_(std::cout.rdbuf(&text_)) {
  std::cout.exceptions(std::ios::badbit | std::ios::failbit);
}

Outcome_Output::~Outcome_Output() {
  std::cout.exceptions(std::ios::goodbit);
  std::cout.rdbuf(before_);
}

void Outcome_Output::discard() noexcept {
  text_.text.clear();
  std::cout.clear();
}

int Outcome_Output::deliver() noexcept {
  const int fault = write_whole(STDOUT_FILENO, text_.text.data(), text_.text.size());
  return fault == EPIPE ? 0 : fault;
}

Outcome_Output::Text::int_type Outcome_Output::Text::overflow(int_type character) {
  if (!traits_type::eq_int_type(character, traits_type::eof())) {
    text.push_back(traits_type::to_char_type(character));
  }
  return traits_type::not_eof(character);
}

std::streamsize Outcome_Output::Text::xsputn(const char* characters, std::streamsize count) {
  text.append(characters, static_cast<std::size_t>(count));
  return count;
}

int write_whole(int descriptor, const char* text, std::size_t size) noexcept {
  while (size > 0) {
    const ssize_t written = ::write(descriptor, text, size);
    if (written < 0 && errno != EINTR) {
      return errno;
    }
    const std::size_t done = written < 0 ? 0 : static_cast<std::size_t>(written);
    text += done;
    size -= done;
  }
  return 0;
}

}  // namespace kuv::vemora::tools
