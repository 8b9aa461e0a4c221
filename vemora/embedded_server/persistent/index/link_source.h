// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <cstdint>
#include <functional>
#include <string>

namespace kuv::vemora::embedded_server {

/// A database, which hands over tables of links in a faster way than row by row as objects: they
/// may have millions of rows.
class Link_Source {
 public:
  using Take = std::function<void(std::uint64_t record_id, std::uint64_t linked_id)>;

  virtual ~Link_Source() = default;

  /// Every row of the table, in the order of the linked id, and then of the record's, as the
  /// database has it. In the transaction that is current on this thread; `take` asks the database
  /// nothing.
  virtual void for_each_link(const std::string& table, const Take& take) = 0;
};

}  // namespace kuv::vemora::embedded_server
