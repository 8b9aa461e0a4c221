// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <libpq-fe.h>

#include <cstdint>
#include <optional>
#include <string>

#include "vemora/embedded_server/persistent/engine/postgresql_values.h"

namespace kuv::vemora::embedded_server {

/// How the values of a C++ type stand in a column.
template <class Value>
struct Column_Type;

template <>
struct Column_Type<std::uint64_t> {
  static constexpr const char* array = "bigint[]";
  static constexpr Oid element = 20;
  static constexpr Oid oid = 1016;
};
template <>
struct Column_Type<std::int64_t> : Column_Type<std::uint64_t> {};
template <>
struct Column_Type<std::int32_t> {
  static constexpr const char* array = "integer[]";
  static constexpr Oid element = 23;
  static constexpr Oid oid = 1007;
};
template <>
struct Column_Type<std::uint32_t> : Column_Type<std::int32_t> {};
template <>
struct Column_Type<bool> {
  static constexpr const char* array = "boolean[]";
  static constexpr Oid element = 16;
  static constexpr Oid oid = 1000;
};
template <>
struct Column_Type<std::string> {
  static constexpr const char* array = "text[]";
  static constexpr Oid element = 25;
  static constexpr Oid oid = 1009;
};
template <class Value>
struct Column_Type<std::optional<Value>> : Column_Type<Value> {};

/// The values of one column as a statement's parameter: an array in the server's binary form.
class Array_Parameter {
 public:
  explicit Array_Parameter(Oid element);

  template <class Value>
  void add(const Value& value) {
    values_.add(value);
    ++count_;
  }

  /// The whole parameter.
  const std::string& bytes();

 private:
  Binary_Values values_;
  std::uint32_t count_ = 0;
};

}  // namespace kuv::vemora::embedded_server
