// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/platform/repositories/server_repository.h"

#include "vemora/embedded_server/persistent/pass/join_pass.h"
#include "vemora/embedded_server/persistent/repositories/sub_repositories.h"

namespace kuv::vemora::embedded_server {
namespace {

class Stored_Servers : public Server_Repository {
 public:
  explicit Stored_Servers(std::shared_ptr<Database> database) : database_(std::move(database)) {}

  std::shared_ptr<server> get_by_id(std::uint64_t id) override {
    return read(database_, [id](Site_Index& site) { return site.servers().find(id); });
  }

 private:
  std::shared_ptr<Database> database_;
};

}  // namespace

std::unique_ptr<Server_Repository> make_server_repository(std::shared_ptr<Database> database) {
  return std::make_unique<Stored_Servers>(std::move(database));
}

}  // namespace kuv::vemora::embedded_server
