// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/platform/repositories/metadata_event_category_repository.h"

#include "records-odb.h"
#include "vemora/embedded_server/persistent/pass/join_pass.h"
#include "vemora/embedded_server/persistent/repositories/sub_repositories.h"

namespace kuv::vemora::embedded_server {
namespace {

class Stored_Categories : public Metadata_Event_Category_Repository {
 public:
  explicit Stored_Categories(std::shared_ptr<Database> database) : database_(std::move(database)) {}

  /// Of several categories of that name, any.
  std::shared_ptr<metadata_event_category> find_by_name(const std::string& name) override {
    return read(database_, [&](Site_Index&) {
      std::shared_ptr<metadata_event_category> record;
      if (!database_->engine().can_hold({name})) {
        return record;  // so none has it
      }
      using Query = odb::query<metadata_event_category>;
      auto found =
          database_->engine().odb().query<metadata_event_category>(Query::name == name, false);
      for (auto place = found.begin(); !record && place != found.end(); ++place) {
        record = std::make_shared<metadata_event_category>();
        place.load(*record);
      }
      return record;
    });
  }

 private:
  std::shared_ptr<Database> database_;
};

}  // namespace

std::unique_ptr<Metadata_Event_Category_Repository> make_metadata_event_category_repository(
    std::shared_ptr<Database> database) {
  return std::make_unique<Stored_Categories>(std::move(database));
}

}  // namespace kuv::vemora::embedded_server
