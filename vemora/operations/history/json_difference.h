// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <json/value.h>

#include <string>
#include <utility>
#include <vector>

#include "vemora/platform/export.h"

namespace kuv::vemora::operations {

// How two JSON values differ. The order of a list means nothing in the documents, so lists are
// compared without it.

/// A field that differs. What it leads to outlives it.
struct Changed_Field {
  std::string path;  ///< the keys that lead to it: "tags.camera.area"

  /// Null where the field is missing, and both of lists.
  const Json::Value* before = nullptr;
  const Json::Value* after = nullptr;

  /// What is in one list and not in the other. Only if both values are lists.
  std::vector<const Json::Value*> removed;
  std::vector<const Json::Value*> added;
};

/// The elements of each of two lists that the other one lacks.
struct List_Difference {
  std::vector<const Json::Value*> removed;
  std::vector<const Json::Value*> added;
};

/// Of two arrays.
VEMORA_API List_Difference difference_of_lists(const Json::Value& before, const Json::Value& after);

/// Appends the fields in which two objects differ, by their keys. Keys of `ignored` do not count.
VEMORA_API void append_changed_fields(const Json::Value& before, const Json::Value& after,
                                      const std::string& ignored,
                                      std::vector<Changed_Field>& fields);

}  // namespace kuv::vemora::operations
