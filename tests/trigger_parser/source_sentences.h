// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kuv::test {

/// The string literals of a source text. Those that nothing stands between are one; comments and
/// includes, which quote things too, are passed over.
std::vector<std::string> literals_of(const std::string& source);

/// The sentences among the literals of a folder's sources: what the code there can say of a
/// document. Names of keys, modes and channels are none, and log lines are left out.
std::vector<std::string> sentences_of_sources(const std::string& folder);

/// Whether a pattern of the sources, its holes filled, can become that text.
bool can_become(std::string_view pattern, std::string_view text);

}  // namespace kuv::test
