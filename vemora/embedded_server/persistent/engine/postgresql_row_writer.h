// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include "vemora/embedded_server/persistent/engine/row_writer.h"

namespace kuv::vemora::embedded_server {

/// Writes thousands of rows with one statement: the server is across a network, where each
/// statement costs a round trip. Many more new ones are copied.
class PostgreSQL_Row_Writer : public Row_Writer {
 protected:
  void insert_all(const Batch& batch) override;
  void put_all(const Batch& batch) override;
  void erase_all(const Batch& batch) override;
};

}  // namespace kuv::vemora::embedded_server
