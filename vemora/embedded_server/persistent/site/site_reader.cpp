// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/persistent/site_reader.h"

#include "vemora/embedded_server/persistent/pass/documents.h"
#include "vemora/embedded_server/persistent/pass/join_pass.h"

namespace kuv::vemora::embedded_server {

std::vector<std::shared_ptr<trigger>> read_triggers(const std::shared_ptr<Database>& database) {
  return read(database, [](Site_Index& site) { return site.triggers().all(); });
}

std::vector<std::shared_ptr<metadata_event_subscription>> read_subscriptions(
    const std::shared_ptr<Database>& database) {
  return read(database, [](Site_Index& site) { return site.subscriptions().all(); });
}

std::vector<std::shared_ptr<eta_camera>> read_eta_cameras(
    const std::shared_ptr<Database>& database) {
  return read(database, [](Site_Index& site) { return site.eta_cameras().all(); });
}

std::vector<std::shared_ptr<camera>> read_cameras(const std::shared_ptr<Database>& database) {
  return read(database, [](Site_Index& site) { return site.cameras().all(); });
}

Documents read_documents(const std::shared_ptr<Database>& database) {
  return read(database, [&](Site_Index&) { return load_documents(database->engine().odb()); });
}

bool has_readable_capabilities(const std::shared_ptr<Database>& database, std::uint64_t camera_id) {
  return read(database, [camera_id](Site_Index& site) {
    return site.cameras().has_readable_capabilities(camera_id);
  });
}

}  // namespace kuv::vemora::embedded_server
