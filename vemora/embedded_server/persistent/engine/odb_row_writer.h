// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include "vemora/embedded_server/persistent/engine/row_writer.h"

namespace odb {
class database;
}

namespace kuv::vemora::embedded_server {

/// Writes each row with a prepared statement of its own, for engines within the process, to which a
/// statement is a function call.
class ODB_Row_Writer : public Row_Writer {
 public:
  explicit ODB_Row_Writer(odb::database& database) : database_(database) {}

 protected:
  void insert_all(const Batch& batch) override;
  void put_all(const Batch& batch) override;
  void erase_all(const Batch& batch) override;

 private:
  odb::database& database_;
};

}  // namespace kuv::vemora::embedded_server
