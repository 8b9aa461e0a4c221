#include <fmt/format.h>

#include <array>
#include <iostream>

#include "tools/vemora-triggers/commands/commands.h"
#include "tools/vemora-triggers/commands/input.h"
#include "tools/vemora-triggers/process/stored_note.h"
#include "tools/vemora-triggers/render/counted.h"
#include "tools/vemora-triggers/render/faults.h"
#include "tools/vemora-triggers/render/json.h"
#include "vemora/embedded_server/inventory/inventory_reader.h"
#include "vemora/embedded_server/persistent/inventory.h"
#include "vemora/embedded_server/persistent/stored_inventory.h"

namespace kuv::vemora::tools {
namespace {

using embedded_server::Database;
using embedded_server::Inventory;
using embedded_server::Inventory_Counts;
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

Read_Inventory read_for_new_site(const embedded_server::Json_Document& document,
                                 const std::shared_ptr<Database>& database) {
  return embedded_server::read_inventory(document, {}, database);
}

Read_Inventory read_for_site(const embedded_server::Json_Document& document,
                             const std::shared_ptr<Database>& database) {
  return embedded_server::read_inventory(
      document, embedded_server::load_inventory_references(database), database);
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

 private:
  const Database& database_;
  bool tried_ = false;
};

/// Reads the document again in the transaction that stores it: another process may have stored
/// something since the first time that is in conflict with it.
Read_Inventory store(const Options& options, const embedded_server::Json_Document& document,
                     const std::shared_ptr<Database>& database) {
  Read_Inventory read;
  Noted_Storing noted(*database);
  embedded_server::store_inventory(database, [&]() -> const Inventory* {
    database->require_owner(options.server_id);
    read = read_for_site(document, database);
    if (!read.faults.empty()) {
      return nullptr;
    }
    noted.note_valid();
    return &read.inventory;
  });
  return read;
}

Inventory_Counts counts_of(const Inventory& inventory) {
  return {inventory.servers.size(),       inventory.cameras.size(),
          inventory.schedules.size(),     inventory.categories.size(),
          inventory.subscriptions.size(), inventory.object_types.size()};
}

Json::Value counts_to_json(const Inventory_Counts& counts) {
  Json::Value records(Json::objectValue);
  records["servers"] = Json::UInt64(counts.servers);
  records["cameras"] = Json::UInt64(counts.cameras);
  records["schedules"] = Json::UInt64(counts.schedules);
  records["eventCategories"] = Json::UInt64(counts.categories);
  records["subscriptions"] = Json::UInt64(counts.subscriptions);
  records["objectTypes"] = Json::UInt64(counts.object_types);
  return records;
}

std::string counted_in_words(const Inventory_Counts& counts) {
  const std::array<std::string, 6> records{
      counted(counts.servers, "server", "servers"),
      counted(counts.cameras, "camera", "cameras"),
      counted(counts.schedules, "schedule", "schedules"),
      counted(counts.categories, "event category", "event categories"),
      counted(counts.subscriptions, "generic subscription", "generic subscriptions"),
      counted(counts.object_types, "general object type", "general object types")};
  return fmt::format("{}", fmt::join(records, ", "));
}

void print_stored(const Options& options, const Inventory& inventory,
                  const Inventory_Counts& site) {
  if (options.json) {
    Json::Value answer(Json::objectValue);
    answer["success"] = true;
    answer["records"] = counts_to_json(counts_of(inventory));
    answer["site"] = counts_to_json(site);
    print_json(answer);
    return;
  }
  std::cout << fmt::format("Stored: {}.\nThe site has: {}.\n",
                           counted_in_words(counts_of(inventory)), counted_in_words(site));
}

Exit_Status reject(const Options& options, const std::string& inventory_path,
                   const embedded_server::Json_Document& document, const Read_Inventory& read) {
  print_faults(options, {read.faults.size(), [&](std::size_t number) {
                           return Located_Fault{
                               "inventory", inventory_path, read.faults[number], &document,
                               {},          std::nullopt,   std::nullopt};
                         }});
  return exit_rejected;
}

}  // namespace

Exit_Status init(const Options& options, const std::string& inventory_path) {
  const auto document = read_input(options, "inventory", inventory_path);
  auto database = open_as_found(options);
  const bool is_new = !holds_site(database);
  Read_Inventory read =
      is_new ? read_for_new_site(document, database) : read_for_site(document, database);
  if (read.faults.empty()) {
    if (is_new) {
      database = Database::open(options.database, Database::Open_Mode::create_if_absent);
    }
    read = store(options, document, database);
  }
  if (!read.faults.empty()) {
    return reject(options, inventory_path, document, read);
  }
  print_stored(options, read.inventory, embedded_server::count_inventory(database));
  return exit_done;
}

}  // namespace kuv::vemora::tools
