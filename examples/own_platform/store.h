// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <json/value.h>

#include <cstdint>
#include <string>

namespace own_platform {

/// Where this server keeps its records: one JSON document in one file. It has a table for each kind
/// of record, and in it a row for each id. A pass works on the document in memory, and sees its own
/// writes there; save() is its commit.
class Store {
 public:
  /// Reads the file, if it is there.
  explicit Store(std::string file);

  /// Writes the whole document: beside the file first, so that a crash leaves the old one.
  void save() const;

  /// Rows by key_of(id).
  Json::Value& table(const std::string& name);

  /// Null where there is no such row.
  const Json::Value& row(const std::string& name, std::uint64_t id);
  bool has(const std::string& name, std::uint64_t id) { return !row(name, id).isNull(); }

  /// An id that no row of the table has.
  std::uint64_t unused_id(const std::string& name);

 private:
  std::string file_;
  Json::Value document_{Json::objectValue};
};

/// With leading zeros, so that rows are in the order of their ids.
std::string key_of(std::uint64_t id);
std::uint64_t id_of(const std::string& key);

}  // namespace own_platform
