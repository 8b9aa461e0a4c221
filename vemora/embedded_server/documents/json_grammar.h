// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "vemora/embedded_server/texts/json_nesting.h"
#include "vemora/platform/export.h"

namespace kuv::vemora::embedded_server {

/// How many values (objects, arrays, strings, numbers, true, false, null) a document may have by
/// default. Each takes about 100 bytes of memory, however short it is in the document.
constexpr std::size_t default_most_values = 20'000'000;

/// What is not JSON, and where it begins.
struct Grammar_Fault {
  std::string message;
  std::size_t offset = 0;
};

/// The first fault of a text that is not JSON (RFC 8259) with an object or an array at the root;
/// nothing if there is none. A text is checked before Json::CharReader reads it, because that
/// accepts numbers, escapes and comments that are not JSON. More than `most_values` values are a
/// fault too, found before memory is used for any. Duplicate keys are not detected here.
VEMORA_API std::optional<Grammar_Fault> find_grammar_fault(
    std::string_view text, std::size_t most_values = default_most_values);

}  // namespace kuv::vemora::embedded_server
