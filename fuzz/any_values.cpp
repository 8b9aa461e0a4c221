// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "fuzz/any_values.h"

#include <iterator>

namespace kuv::fuzz {

using Json::Value;

const std::vector<Value>& boundary_numbers() {
  static const std::vector<Value> numbers{0,
                                          1,
                                          -1,
                                          999,
                                          1000,
                                          1001,
                                          599999,
                                          600000,
                                          600001,
                                          28799999,
                                          28800000,
                                          28800001,
                                          Json::Int64(-9223372036854775807) - 1,
                                          Value(Json::UInt64(2147483648U)),
                                          Value(Json::UInt64(4294967295U)),
                                          Value(Json::UInt64(4294967296U)),
                                          Value(Json::UInt64(9223372036854775808U)),
                                          Value(Json::UInt64(18446744073709551615U)),
                                          0.5,
                                          -0.0,
                                          1000.0,
                                          4294968.0,
                                          18446744073709551616.0,
                                          1e300};
  return numbers;
}

const std::vector<std::string>& words() {
  using namespace std::string_literals;
  static const std::vector<std::string> texts{""s,
                                              "gate"s,
                                              "5000"s,
                                              "true"s,
                                              "object-presence"s,
                                              "object-track"s,
                                              "Object-Track"s,
                                              "onvif-metadata"s,
                                              "metadata-event"s,
                                              "object-detection"s,
                                              "external"s,
                                              "motion-detection"s,
                                              "audio-detection"s,
                                              "smell-detection"s,
                                              "person"s,
                                              "a\0b"s,
                                              "T\u00fcr \u95e8"s};
  return texts;
}

Value any_value(Random& random) {
  switch (random.below(8)) {
    case 0:
    case 7:
      return Value();
    case 1:
      return random.chance(50);
    case 2:
      return random.pick(boundary_numbers());
    case 3:
      return random.chance(25) ? "" : random.pick(words());
    case 4:
      return Json::arrayValue;
    case 5:
      return Json::objectValue;
    default: {
      Value array(Json::arrayValue);
      array.append(random.pick(boundary_numbers()));
      return array;
    }
  }
}

Value& any_child(Value& parent, Random& random) {
  return *std::next(parent.begin(), static_cast<std::ptrdiff_t>(random.below(parent.size())));
}

void swap_elements(Value& array, Random& random) {
  const auto one = static_cast<Json::ArrayIndex>(random.below(array.size()));
  const auto another = static_cast<Json::ArrayIndex>(random.below(array.size()));
  array[one].swap(array[another]);
}

}  // namespace kuv::fuzz
