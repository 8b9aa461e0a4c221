// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <cstdint>
#include <functional>
#include <string>

namespace kuv::vemora::embedded_server {

/// A database that hands over tables of links, which may have millions of rows, in a faster way
/// than row by row as objects.
class Link_Source {
 public:
  using Take = std::function<void(std::uint64_t record_id, std::uint64_t linked_id)>;

  virtual ~Link_Source() = default;

  /// Every row of the table, in the order of both ids as the database has it. In the transaction
  /// that is current on this thread; `take` asks the database nothing.
  virtual void for_each_link(const std::string& table, const Take& take) = 0;
};

}  // namespace kuv::vemora::embedded_server
