// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "tools/vemora-triggers/render/init.h"

#include <optional>
#include <vector>

#include "tools/vemora-triggers/commands/commands.h"
#include "tools/vemora-triggers/commands/input.h"
#include "tools/vemora-triggers/process/stored_note.h"
#include "tools/vemora-triggers/render/faults.h"
#include "vemora/embedded_server/host/mass_deletion.h"
#include "vemora/embedded_server/inventory/inventory_reader.h"
#include "vemora/embedded_server/persistent/inventory.h"
#include "vemora/embedded_server/persistent/prune.h"
#include "vemora/embedded_server/persistent/stored_inventory.h"

namespace kuv::vemora::tools {
namespace {

using embedded_server::Database;
using embedded_server::Deletions;
using embedded_server::Inventory;
using embedded_server::Inventory_References;
using embedded_server::Json_Document;
using embedded_server::Mass_Deletion;
using embedded_server::Pruned_Records;
using embedded_server::Read_Inventory;

bool holds_site(const std::shared_ptr<Database>& database) {
  return database && database->holds_site();
}

/// Creates nothing, because the document may be faulty.
std::shared_ptr<Database> open_as_found(const Options& options) {
  auto database = Database::open(options.database, Database::Open_Mode::as_found);
  if (holds_site(database)) {
    database->require_owner(options.server_id);
  }
  return database;
}

/// An inventory that is the whole site refers to nothing but itself.
Inventory_References references_of(const std::shared_ptr<Database>& database, bool is_whole_site) {
  if (!holds_site(database)) {
    return {};
  }
  Inventory_References stored = embedded_server::load_inventory_references(database);
  if (is_whole_site) {
    stored.camera_ids.clear();
    stored.category_ids.clear();
    stored.object_types.clear();
  }
  return stored;
}

/// Reads the inventory for the site in the database, or for a new one.
Read_Inventory read_for_site(const Json_Document& document,
                             const std::shared_ptr<Database>& database, bool is_whole_site) {
  Read_Inventory read =
      embedded_server::read_inventory(document, references_of(database, is_whole_site), database);
  const Json::Value& root = document.value();
  if (is_whole_site && root.isObject() && root.empty()) {
    read.faults.push_back({"With --prune, the inventory is the whole site; this one has no list.",
                           document.locate(root)});
  }
  return read;
}

/// Records in its destructor whether an inventory was stored, also if something was thrown.
class Noted_Storing {
 public:
  explicit Noted_Storing(const Database& database) : database_(database) {}
  ~Noted_Storing() {
    const embedded_server::Kept kept = tried_ ? database_.kept() : embedded_server::Kept::nothing;
    note_stored(kept == embedded_server::Kept::nothing      ? ""
                : kept == embedded_server::Kept::everything ? "The inventory is stored."
                                                            : "It is not known whether the "
                                                              "inventory is stored.");
  }
  Noted_Storing(const Noted_Storing&) = delete;
  Noted_Storing& operator=(const Noted_Storing&) = delete;

  /// Until this is called, nothing is written.
  void note_valid() noexcept { tried_ = true; }

  /// Nothing is written any more.
  void note_refused() noexcept { tried_ = false; }

 private:
  const Database& database_;
  bool tried_ = false;
};

/// What became of an inventory.
struct Storing {
  Read_Inventory read;  ///< nothing is stored if it has faults
  std::optional<Pruned_Records> removed;
  std::vector<Mass_Deletion> refused;  ///< nothing is stored if this is not empty
};

/// Reads the document again in the transaction that stores it: another process may have stored
/// something since the first time that is in conflict with it.
Storing store(const Options& options, const Json_Document& document, bool prune,
              const std::shared_ptr<Database>& database) {
  Storing storing;
  Noted_Storing noted(*database);
  const auto read = [&]() -> const Inventory* {
    database->require_owner(options.server_id);
    storing.read = read_for_site(document, database, prune);
    if (!storing.read.faults.empty()) {
      return nullptr;
    }
    noted.note_valid();
    return &storing.read.inventory;
  };
  if (!prune) {
    embedded_server::store_inventory(database, read);
    return storing;
  }
  storing.removed = embedded_server::prune_to_inventory(
      database, options.server_id, read, [&](const Deletions& deletions) {
        if (!options.allow_mass_deletion) {
          storing.refused = embedded_server::find_mass_deletions(deletions);
        }
        if (!storing.refused.empty()) {
          noted.note_refused();
        }
        return storing.refused.empty();
      });
  return storing;
}

/// The faults and warnings of one inventory, with its file; it outlives the lists.
class Complaints {
 public:
  Complaints(const std::string& path, const Json_Document& document, const Read_Inventory& read)
      : path_(path), document_(document), read_(read) {}

  Fault_List faults() const {
    return {read_.faults.size(),
            [this](std::size_t number) { return located(read_.faults[number], ""); }};
  }

  Fault_List warnings() const {
    return {read_.warnings.size(), [this](std::size_t number) {
              const embedded_server::Document_Warning& warning = read_.warnings[number];
              return located(warning.fault.fault, warning.code);
            }};
  }

 private:
  Located_Fault located(const embedded_server::Document_Fault& fault,
                        const std::string& warning) const {
    return {"inventory",  path_,        fault,        &document_, {},
            std::nullopt, std::nullopt, std::nullopt, warning};
  }

  const std::string& path_;
  const Json_Document& document_;
  const Read_Inventory& read_;
};

void print_rejected(const Options& options, const Complaints& complaints) {
  if (complaints.warnings().count == 0) {
    print_faults(options, complaints.faults());
  } else {
    print_check(options, complaints.faults(), complaints.warnings());
  }
}

}  // namespace

Exit_Status init(const Options& options, const std::string& inventory_path, bool prune) {
  const auto document = read_input(options, "inventory", inventory_path);
  auto database = open_as_found(options);
  Storing storing;
  storing.read = read_for_site(document, database, prune);
  if (storing.read.faults.empty()) {
    if (!holds_site(database)) {
      database = Database::open(options.database, Database::Open_Mode::create_if_absent);
    }
    storing = store(options, document, prune, database);
  }
  const Complaints complaints(inventory_path, document, storing.read);
  if (!storing.read.faults.empty()) {
    print_rejected(options, complaints);
    return exit_rejected;
  }
  if (!storing.refused.empty()) {
    print_refused_prune(options, storing.refused, complaints.warnings());
    return exit_refused;
  }
  print_stored_site(
      options,
      {storing.read.inventory, storing.removed, embedded_server::count_inventory(database)},
      complaints.warnings());
  return exit_done;
}

}  // namespace kuv::vemora::tools
