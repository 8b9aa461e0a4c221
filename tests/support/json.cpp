// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "support/json.h"

#include <json/reader.h>

#include <memory>
#include <stdexcept>

namespace kuv::test {

Json::Value json(const std::string& text) {
  Json::CharReaderBuilder builder;
  Json::CharReaderBuilder::strictMode(&builder.settings_);
  builder["strictRoot"] = false;
  const std::unique_ptr<Json::CharReader> reader(builder.newCharReader());
  Json::Value value;
  std::string complaint;
  if (!reader->parse(text.data(), text.data() + text.size(), &value, &complaint)) {
    throw std::invalid_argument(complaint);
  }
  return value;
}

Json::Value with(Json::Value object, const std::string& key, const std::string& text) {
  object[key] = json(text);
  return object;
}

Json::Value without(Json::Value object, const std::string& key) {
  object.removeMember(key);
  return object;
}

}  // namespace kuv::test
