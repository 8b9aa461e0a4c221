// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <string_view>

namespace kuv::vemora::embedded_server {

/// The same key as a text that is never freed; null if no document of ours defines this key. Trees
/// then need no memory for most of their keys.
const char* known_key(std::string_view key);

}  // namespace kuv::vemora::embedded_server
