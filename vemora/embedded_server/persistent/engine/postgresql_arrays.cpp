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
  values_.append(std::uint32_t{1});
  values_.append(std::uint32_t{1});
  values_.append(static_cast<std::uint32_t>(element));
  values_.append(std::uint32_t{0});
  values_.append(std::uint32_t{1});
}

const std::string& Array_Parameter::bytes() {
  values_.put(length_place, count_);
  return values_.bytes();
}

}  // namespace kuv::vemora::embedded_server
