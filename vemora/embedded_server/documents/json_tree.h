// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <json/value.h>

#include <cstddef>
#include <optional>
#include <string>

namespace kuv::vemora::embedded_server {

/// The tree of a text that is JSON (RFC 8259), has an object or an array at the root, and neither
/// duplicate keys nor more than `most_values` values; read in one pass. Values know where they
/// begin and end, as Json::CharReader would tell them.
///
/// Nothing if the text is refused. A few texts are refused that are JSON, such as numbers that no
/// double can hold: whether they are taken, and what is wrong with a text, is to be found out by
/// find_grammar_fault and Json::CharReader.
std::optional<Json::Value> read_json_tree(const std::string& text, std::size_t most_values);

}  // namespace kuv::vemora::embedded_server
