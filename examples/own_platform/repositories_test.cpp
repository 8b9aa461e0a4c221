// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only

// The repositories of this server, tested by the suite that comes with the product.

#include "repositories.h"

#include <unistd.h>

#include <filesystem>
#include <memory>
#include <string>

#include "rows.h"
#include "store.h"
#include "vemora/testing/contract_suite.h"

namespace own_platform {
namespace {

Json::Value list_of_texts(const std::set<std::string>& texts) {
  Json::Value list(Json::arrayValue);
  for (const std::string& text : texts) {
    list.append(text);
  }
  return list;
}

/// One file of this server, in the folder of the test.
class Own_Site : public kuv::test::Site_Under_Test {
 public:
  explicit Own_Site(const kuv::test::Site_Description& described) {
    std::filesystem::remove(file_);
    store_ = std::make_shared<Store>(file_);
    for (const auto& [id, record] : described.servers()) {
      Json::Value& row = store_->table("servers")[key_of(id)];
      row["name"] = record.name;
      row["tags"] = row_of(record.tags);
    }
    for (const auto& [id, record] : described.schedules()) {
      Json::Value& row = store_->table("schedules")[key_of(id)];
      row["name"] = record.name;
      row["usable"] = record.usable;
    }
    for (const auto& [id, record] : described.categories()) {
      store_->table("categories")[key_of(id)]["name"] = record.name;
    }
    for (const auto& [id, record] : described.cameras()) {
      Json::Value& row = store_->table("cameras")[key_of(id)];
      row["name"] = record.name;
      row["tags"] = row_of(record.tags);
      row["topics"] = list_of_texts(record.topics);
      row["objectDetection"] = record.object_detection;
      row["motionDetection"] = record.motion_detection;
    }
    for (const auto& [id, record] : described.subscriptions()) {
      Json::Value& row = store_->table("subscriptions")[key_of(id)];
      row["name"] = record.name;
      row["tags"] = row_of(record.tags);
      row["cameras"] = list_of(record.camera_ids);
      if (record.category_id) {
        row["category"] = Json::UInt64(*record.category_id);
      }
    }
  }

  ~Own_Site() override { std::filesystem::remove(file_); }

  kuv::vemora::Repository& repository() override {
    if (!repository_) {
      repository_ = make_repository(store_);
    }
    return *repository_;
  }

  bool reopen() override {
    store_->save();
    repository_.reset();
    store_ = std::make_shared<Store>(file_);
    return true;
  }

  std::optional<kuv::test::Stored_Rows> look_behind() override {
    kuv::test::Stored_Rows stored;
    const Json::Value& triggers = store_->table("triggers");
    for (auto row = triggers.begin(); row != triggers.end(); ++row) {
      stored.trigger_ids.insert(id_of(row.name()));
      stored.schedules_of_triggers += (*row)["schedules"].size();
      stored.sources_of_triggers += (*row)["sources"].size();
    }
    stored.subscription_links = links_in("subscriptions");
    stored.detection_links = links_in("detections");
    return stored;
  }

  bool plant(const kuv::test::Half_Filled_Subscription& planted) override {
    Json::Value& row = store_->table("subscriptions")[key_of(planted.id)];
    row["name"] = planted.name;
    if (planted.camera_id) {
      row["camera"] = Json::UInt64(*planted.camera_id);
    }
    if (planted.onvif_topic) {
      row["topic"] = *planted.onvif_topic;
    }
    return true;
  }

 private:
  std::set<kuv::test::Stored_Rows::Link> links_in(const std::string& table) {
    std::set<kuv::test::Stored_Rows::Link> links;
    const Json::Value& rows = store_->table(table);
    for (auto row = rows.begin(); row != rows.end(); ++row) {
      for (const std::uint64_t trigger_id : ids_in((*row)["triggers"])) {
        links.insert({id_of(row.name()), trigger_id});
      }
    }
    return links;
  }

  const std::string file_ = "tested_site_" + std::to_string(::getpid()) + ".json";
  std::shared_ptr<Store> store_;
  std::shared_ptr<kuv::vemora::Repository> repository_;
};

std::vector<kuv::test::Contract_Implementation> implementations() {
  // Its file is JSON, and so are its texts: UTF-8.
  constexpr bool stores_any_bytes = false;
  return {{"json_file",
           [](const kuv::test::Site_Description& site) { return std::make_unique<Own_Site>(site); },
           stores_any_bytes}};
}

VEMORA_TEST_REPOSITORIES(Own, implementations())

}  // namespace
}  // namespace own_platform
