// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include "vemora/platform/odb_runtime.h"

#include <odb/wrapper-traits.hxx>
#include <optional>

namespace odb {

/// Lets ODB map std::optional: an empty one is NULL.
template <class T>
class wrapper_traits<std::optional<T>> {
 public:
  typedef T wrapped_type;
  typedef T unrestricted_wrapped_type;
  typedef std::optional<T> wrapper_type;

  static const bool null_handler = true;
  static const bool null_default = true;

  static bool get_null(const wrapper_type& wrapper) { return !wrapper.has_value(); }
  static void set_null(wrapper_type& wrapper) { wrapper.reset(); }
  static const T& get_ref(const wrapper_type& wrapper) { return *wrapper; }
  static T& set_ref(wrapper_type& wrapper) {
    if (!wrapper) {
      wrapper.emplace();
    }
    return *wrapper;
  }
};

}  // namespace odb
