// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "support/stub_platform/camera_link.h"

#include <odb/database.hxx>
#include <stdexcept>

namespace kuv::test {
namespace {

/// A link to something unloaded wants a database to load it from. Nobody loads from this one.
class Unreachable_Database : public odb::database {
 public:
  Unreachable_Database() : odb::database(odb::id_common) {}

  template <class Record>
  typename odb::object_traits<Record>::pointer_type load(
      const typename odb::object_traits<Record>::id_type& /*id*/) {
    unreachable();
  }

  odb::transaction_impl* begin() override { unreachable(); }

 private:
  [[noreturn]] static void unreachable() {
    throw std::logic_error("something was loaded that only its id was asked of");
  }

  const schema_version_info& load_schema_version(const std::string& /*name*/) const override {
    unreachable();
  }
  odb::connection* connection_() override { unreachable(); }
};

}  // namespace

odb::lazy_shared_ptr<vemora::camera> unloaded_link(std::uint64_t camera_id) {
  static Unreachable_Database database;
  return {database, camera_id};
}

}  // namespace kuv::test
