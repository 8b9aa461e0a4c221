// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <json/value.h>

#include <string>

namespace kuv::test {

/// The value that a JSON text stands for, read strictly, any value at the root. Throws
/// std::invalid_argument with the reader's complaint for a text that is no JSON.
Json::Value json(const std::string& text);

/// The object with one member set to what `text` stands for.
Json::Value with(Json::Value object, const std::string& key, const std::string& text);

/// The object without that member.
Json::Value without(Json::Value object, const std::string& key);

}  // namespace kuv::test
