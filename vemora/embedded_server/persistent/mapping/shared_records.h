// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include "vemora/platform/odb_runtime.h"

#include <memory>
#include <odb/traits.hxx>

namespace odb {

/// ODB would hand a plain pointer over to a shared one; where that runs out of memory, the shared
/// one deletes the record and ODB frees it once more.
template <class Record>
class access::pointer_factory<Record, std::shared_ptr<Record>> {
 public:
  typedef Record value_type;
  typedef std::shared_ptr<Record> pointer_type;

  static pointer_type create() { return std::make_shared<Record>(); }
};

}  // namespace odb
