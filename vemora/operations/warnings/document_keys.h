// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <array>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "vemora/embedded_server/persistent/source_type_names.h"
#include "vemora/platform/trigger_source_type.h"

namespace kuv::vemora::operations {

/// Which keys a value of a document may have.
struct Document_Keys {
  struct Member {
    std::string key;
    std::unique_ptr<Document_Keys> keys;
  };

  /// Null when there is no such key.
  const Member* find(std::string_view key) const;

  std::vector<Member> members;
  bool are_free = false;                    ///< any others too, as the names of tags are
  std::unique_ptr<Document_Keys> elements;  ///< of an array

  /// Of a source, what holds besides, by its type.
  std::array<std::unique_ptr<Document_Keys>, source_type_names.size()> by_source_type;
  bool depend_on_source_type = false;
};

// As the published schemas say.
const Document_Keys& keys_of_configuration();
const Document_Keys& keys_of_mapping();

}  // namespace kuv::vemora::operations
