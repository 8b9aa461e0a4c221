// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "vemora/embedded_server/documents/json_document.h"
#include "vemora/embedded_server/host/services.h"
#include "vemora/embedded_server/persistent/database.h"
#include "vemora/embedded_server/persistent/pass_scope.h"
#include "vemora/operations/site/site_records.h"
#include "vemora/operations/site/unstored_pass.h"
#include "vemora/operations/warnings/judged_triggers.h"
#include "vemora/platform/records/camera.h"
#include "vemora/platform/records/server.h"
#include "vemora/platform/tags/tag_entry.h"

namespace kuv::vemora::operations {

/// One state of a site: its records, and those that a pass on its documents would make of them.
/// Read in one transaction that stores nothing and waits for nobody; it lasts as long as this
/// object. To be used on one thread, with no pass open on it.
class Site_View {
 public:
  /// A subscription of the site, with neither camera nor topic.
  struct Generic_Subscription {
    std::string name;
    std::set<Tag_Entry> tags;
  };

  /// Throws Database_Error.
  Site_View(const std::shared_ptr<embedded_server::Database>& database, std::uint64_t server_id)
      : Site_View(database, server_id, nullptr, nullptr) {}

  /// The same with other documents in the place of the stored ones, where they are given: they must
  /// be valid, and outlive this object.
  Site_View(const std::shared_ptr<embedded_server::Database>& database, std::uint64_t server_id,
            const embedded_server::Json_Document* config,
            const embedded_server::Json_Document* mapping);

  /// From then on the same state with the stored documents, whatever it was shown with before. What
  /// was asked of refreshed(), triggers(), errors() and mapping() is not valid any longer. Throws
  /// Database_Error.
  void turn_to_stored_documents();

  Repository& repository() const { return *repository_; }
  std::uint64_t server_id() const { return server_id_; }
  const server& here() const { return here_; }

  const std::map<std::uint64_t, std::shared_ptr<camera>>& cameras() const { return cameras_; }
  const std::map<std::uint64_t, Generic_Subscription>& subscriptions() const {
    return subscriptions_;
  }

  /// As stored, and as they would be after a refresh.
  const Site_Records& stored() const { return stored_; }
  const Site_Records& refreshed() const { return pass_->records; }

  /// The elements of the configuration with what the parser makes of them, and the errors of
  /// a refresh.
  const std::vector<Judged_Trigger>& triggers() const { return triggers_; }
  const std::vector<std::string>& errors() const { return pass_->errors; }

  bool has_config() const { return has_config_; }
  const Json::Value& mapping() const { return mapping_->value(); }

  /// The object types that a stored trigger searches for.
  std::set<Object_Search_Item> objects_of(const trigger& record) const;
  Meta_Type_Resolver& resolver() const { return *resolver_; }

 private:
  void take_documents(const embedded_server::Json_Document* config,
                      const embedded_server::Json_Document* mapping);
  void read_site();
  void run_pass();

  std::shared_ptr<embedded_server::Database> database_;
  std::uint64_t server_id_;
  embedded_server::Pass_Scope scope_;
  std::shared_ptr<Repository> repository_;
  std::shared_ptr<embedded_server::Inventory_Meta_Type_Resolver> resolver_;
  server here_;
  std::map<std::uint64_t, std::shared_ptr<camera>> cameras_;
  std::map<std::uint64_t, Generic_Subscription> subscriptions_;
  std::shared_ptr<const embedded_server::Json_Document> config_;
  std::shared_ptr<const embedded_server::Json_Document> mapping_;
  bool has_config_ = false;
  Site_Records stored_;
  std::optional<Unstored_Pass> pass_;
  std::vector<Judged_Trigger> triggers_;
};

}  // namespace kuv::vemora::operations
