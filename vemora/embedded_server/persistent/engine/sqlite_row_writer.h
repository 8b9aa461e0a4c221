// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include "vemora/embedded_server/persistent/engine/odb_row_writer.h"

namespace kuv::vemora::embedded_server {

/// Adds links, which may be millions, without an object for each.
class SQLite_Row_Writer : public ODB_Row_Writer {
 public:
  using ODB_Row_Writer::ODB_Row_Writer;

 protected:
  void insert_all(const Batch& batch) override;
};

}  // namespace kuv::vemora::embedded_server
