// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/operations/site/site_view.h"

#include <fmt/format.h>

#include <limits>
#include <utility>

#include "vemora/embedded_server/host/stored_document.h"
#include "vemora/embedded_server/persistent/inventory.h"
#include "vemora/embedded_server/persistent/site_reader.h"
#include "vemora/trigger_manager/search_items.h"

namespace kuv::vemora::operations {
namespace {

using embedded_server::Json_Document;

/// Of one that is given, a pointer that owns nothing.
std::shared_ptr<const Json_Document> document_to_read(const Json_Document* given,
                                                      const std::optional<std::string>& stored,
                                                      const char* name) {
  return given != nullptr ? std::shared_ptr<const Json_Document>(std::shared_ptr<void>(), given)
                          : std::make_shared<const Json_Document>(
                                embedded_server::read_stored_document(stored, name));
}

}  // namespace

Site_View::Site_View(const std::shared_ptr<embedded_server::Database>& database,
                     std::uint64_t server_id, const Json_Document* config,
                     const Json_Document* mapping)
    : database_(database),
      server_id_(server_id),
      scope_(database, server_id, embedded_server::Pass_Scope::Mode::read_only),
      repository_(make_repository(database)),
      resolver_(std::make_shared<embedded_server::Inventory_Meta_Type_Resolver>()) {
  take_documents(config, mapping);
  read_site();
  run_pass();  // last: from then on the repositories show the refreshed records
}

void Site_View::turn_to_stored_documents() {
  triggers_.clear();
  pass_.reset();
  take_documents(nullptr, nullptr);
  scope_.start_over();
  run_pass();
}

void Site_View::take_documents(const Json_Document* config, const Json_Document* mapping) {
  config_ = document_to_read(config, scope_.documents().config, "configuration");
  mapping_ = document_to_read(mapping, scope_.documents().mapping, "mapping");
  has_config_ = config != nullptr || scope_.documents().config.has_value();
}

void Site_View::read_site() {
  resolver_->learn(load_object_types(database_));
  if (const std::shared_ptr<server> record = repository_->servers().get_by_id(server_id_)) {
    here_ = *record;
  }
  for (const std::shared_ptr<camera>& record : embedded_server::read_cameras(database_)) {
    cameras_.emplace_hint(cameras_.end(), record->id, record);
  }
  Metadata_Event_Subscription_Repository::Get_Matching_Subscriptions_Params generic;
  generic.kind = decltype(generic)::Kind::generic;
  for (const auto& record :
       repository_->metadata_event_subscriptions().Get_Matching_Subscriptions(generic)) {
    subscriptions_[record->id] = {record->name, record->tags};
  }
  stored_ = read_site_records(database_);
}

void Site_View::run_pass() {
  pass_ = run_unstored_pass(database_, server_id_, config_->value(), mapping_->value());
  triggers_ = judged_triggers({*config_, *mapping_, pass_->schedules, pass_->triggers, true, false},
                              here_.tags);
}

std::set<Object_Search_Item> Site_View::objects_of(const trigger& record) const {
  return expand_search_items(search_items(record), *resolver_);
}

}  // namespace kuv::vemora::operations
