// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/persistent/engine/postgresql_arrays.h"

namespace kuv::vemora::embedded_server {
namespace {

// The head of an array of one dimension: dimensions, whether NULLs may come, element type, length,
// index of the first.
constexpr std::size_t length_place = 12;

}  // namespace

Array_Parameter::Array_Parameter(Oid element) {
  append(std::uint32_t{1});
  append(std::uint32_t{1});
  append(static_cast<std::uint32_t>(element));
  append(std::uint32_t{0});
  append(std::uint32_t{1});
}

const std::string& Array_Parameter::bytes() {
  put(length_place, count_);
  return bytes_;
}

void Array_Parameter::add_bytes(std::string_view value) {
  append(static_cast<std::uint32_t>(value.size()));
  bytes_ += value;
  ++count_;
}

void Array_Parameter::add_null() {
  append(~std::uint32_t{0});
  ++count_;
}

void Array_Parameter::put(std::size_t place, std::uint32_t number) {
  for (std::size_t rest = sizeof number; rest-- > 0;) {
    bytes_[place++] = static_cast<char>((number >> (8 * rest)) & 0xFF);
  }
}

}  // namespace kuv::vemora::embedded_server
