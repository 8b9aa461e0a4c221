// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kuv::vemora::embedded_server {

/// Texts one after the other, each after its length, as one text. An empty list is the empty text.
std::string joined_texts(const std::vector<std::string>& texts);

/// The texts of such a text; nothing if it is none.
std::optional<std::vector<std::string>> texts_in(std::string_view joined);

}  // namespace kuv::vemora::embedded_server
