// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <string_view>

#include "fuzz/document_parsing.h"

namespace {

/// Stops the process as a crash would, which is what a fuzzer looks for.
void expect_sound(const kuv::fuzz::Verdict& verdict) {
  if (verdict.judge == kuv::fuzz::Judge::unknown || !verdict.broken_promises.empty()) {
    std::cerr << "rejected with: " << verdict.text << '\n';
    for (const std::string& promise : verdict.broken_promises) {
      std::cerr << "accepted, but not so: " << promise << '\n';
    }
    std::abort();
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  expect_sound(kuv::fuzz::parse_documents(kuv::fuzz::split_documents(text)));
  return 0;
}
