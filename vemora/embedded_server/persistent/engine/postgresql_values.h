// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>

namespace kuv::vemora::embedded_server {

/// Numbers and values in the server's binary form, one after the other.
class Binary_Values {
 public:
  void add(const std::string& value) { add_bytes(value); }
  void add(bool value) { add_bytes(std::string_view(value ? "\1" : "\0", 1)); }
  template <class Value>
  std::enable_if_t<std::is_integral_v<Value> && !std::is_same_v<Value, bool>> add(Value value) {
    append(static_cast<std::uint32_t>(sizeof value));
    append(static_cast<std::make_unsigned_t<Value>>(value));
  }
  template <class Value>
  void add(const std::optional<Value>& value) {
    if (value) {
      add(*value);
    } else {
      append(~std::uint32_t{0});
    }
  }

  /// A number that is no value.
  template <class Number>
  void append(Number number) {
    char bytes[sizeof number];
    write(number, bytes);
    bytes_.append(bytes, sizeof number);
  }

  /// Bytes that are no value.
  void append(std::string_view bytes) { bytes_ += bytes; }

  /// Puts a number in the place of what is there.
  void put(std::size_t place, std::uint32_t number) { write(number, &bytes_[place]); }

  const std::string& bytes() const { return bytes_; }
  void clear() { bytes_.clear(); }

 private:
  void add_bytes(std::string_view value) {
    append(static_cast<std::uint32_t>(value.size()));
    bytes_ += value;
  }

  template <class Number>
  static void write(Number number, char* to) {
    for (std::size_t rest = sizeof number; rest-- > 0;) {
      *to++ = static_cast<char>((number >> (8 * rest)) & 0xFF);
    }
  }

  std::string bytes_;
};

}  // namespace kuv::vemora::embedded_server
