// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <libpq-fe.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>

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

  void add(const std::string& value) { add_bytes(value); }
  void add(bool value) { add_bytes(std::string_view(value ? "\1" : "\0", 1)); }
  template <class Value>
  std::enable_if_t<std::is_integral_v<Value> && !std::is_same_v<Value, bool>> add(Value value) {
    append(static_cast<std::uint32_t>(sizeof value));
    append(static_cast<std::make_unsigned_t<Value>>(value));
    ++count_;
  }
  template <class Value>
  void add(const std::optional<Value>& value) {
    if (value) {
      add(*value);
    } else {
      add_null();
    }
  }

  /// The whole parameter.
  const std::string& bytes();

 private:
  void add_bytes(std::string_view value);
  void add_null();

  template <class Number>
  void append(Number number) {
    for (std::size_t rest = sizeof number; rest-- > 0;) {
      bytes_ += static_cast<char>((number >> (8 * rest)) & 0xFF);
    }
  }
  void put(std::size_t place, std::uint32_t number);

  std::string bytes_;
  std::uint32_t count_ = 0;
};

}  // namespace kuv::vemora::embedded_server
