#include "vemora/platform/repositories/server_repository.h"

#include "records-odb.h"
#include "rows-odb.h"
#include "vemora/embedded_server/persistent/pass/join_pass.h"
#include "vemora/embedded_server/persistent/repositories/sub_repositories.h"

namespace kuv::vemora::embedded_server {
namespace {

class Stored_Servers : public Server_Repository {
 public:
  explicit Stored_Servers(std::shared_ptr<Database> database) : database_(std::move(database)) {}

  std::shared_ptr<server> get_by_id(std::uint64_t id) override {
    return read(database_, [&](Site_Index&) {
      odb::database& odb = database_->engine().odb();
      std::shared_ptr<server> record = odb.find<server>(id);
      if (record) {
        load_tags(odb, *record);
      }
      return record;
    });
  }

 private:
  static void load_tags(odb::database& odb, server& record) {
    using Query = odb::query<rows::Server_Tag>;
    rows::Server_Tag row;
    auto tags = odb.query<rows::Server_Tag>(Query::key.record_id == record.id, false);
    for (auto place = tags.begin(); place != tags.end(); ++place) {
      place.load(row);
      record.tags[row.key.name].value = row.value;
    }
  }

  std::shared_ptr<Database> database_;
};

}  // namespace

std::unique_ptr<Server_Repository> make_server_repository(std::shared_ptr<Database> database) {
  return std::make_unique<Stored_Servers>(std::move(database));
}

}  // namespace kuv::vemora::embedded_server
