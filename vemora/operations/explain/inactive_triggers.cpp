// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/operations/explain/inactive_triggers.h"

#include <limits>
#include <set>

#include "vemora/embedded_server/persistent/site_reader.h"
#include "vemora/operations/explain/explainer.h"
#include "vemora/operations/site/site_view.h"

namespace kuv::vemora::operations {
namespace {

using embedded_server::Json_Document;

/// Whether every trigger that the stored configuration names has a record: then nobody has to be
/// judged, which takes as long as a pass.
bool all_are_stored(const std::shared_ptr<embedded_server::Database>& database) {
  const std::optional<std::string> text = embedded_server::read_documents(database).config;
  if (!text) {
    return true;
  }
  std::set<std::uint64_t> stored;
  for (const std::shared_ptr<trigger>& record : embedded_server::read_triggers(database)) {
    stored.insert(record->id);
  }
  try {
    const Json_Document config(*text, std::numeric_limits<std::size_t>::max());
    for (const Json::Value& element : config.value()["triggers"]) {
      if (stored.count(element["id"].asUInt64()) == 0) {
        return false;
      }
    }
    return true;
  } catch (const embedded_server::Document_Error&) {
    return false;  // whoever judges them tells the damage
  } catch (const Json::Exception&) {
    return false;
  }
}

}  // namespace

Inactive_Triggers inactive_triggers(const std::shared_ptr<embedded_server::Database>& database,
                                    std::uint64_t server_id, std::size_t most) {
  if (all_are_stored(database)) {
    return {};
  }
  const Site_View site(database, server_id);
  std::set<std::uint64_t> ids;
  for (const Judged_Trigger& configured : site.triggers()) {
    if (configured.subject.id && site.stored().triggers.count(*configured.subject.id) == 0) {
      ids.insert(*configured.subject.id);
    }
  }
  Inactive_Triggers inactive;
  inactive.count = ids.size();
  for (auto id = ids.begin(); id != ids.end() && inactive.first.size() < most; ++id) {
    inactive.first.push_back(Explainer(site, *id).of_trigger());
  }
  return inactive;
}

}  // namespace kuv::vemora::operations
