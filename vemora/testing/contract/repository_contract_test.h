// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <map>
#include <memory>
#include <set>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "vemora/testing/builders/record_builders.h"
#include "vemora/testing/builders/record_texts.h"
#include "vemora/testing/builders/site_description.h"
#include "vemora/testing/contract/implementation.h"

namespace kuv::test {

/// A test of what the repositories promise, of whichever implementation. A test says what there is
/// on the site before it asks for the first repository.
class Repository_Contract_Test : public testing::TestWithParam<Contract_Implementation> {
 protected:
  using Ids = std::vector<std::uint64_t>;
  using Texts = std::vector<std::string>;

  Site_Description site;

  Site_Under_Test& site_under_test() {
    if (!site_under_test_) {
      site_under_test_ = GetParam().make(site);
    }
    return *site_under_test_;
  }

  Repository& repository() { return site_under_test().repository(); }
  Trigger_Repository& triggers() { return repository().triggers(); }
  Metadata_Event_Subscription_Repository& subscriptions() {
    return repository().metadata_event_subscriptions();
  }
  ETA_Camera_Repository& eta_cameras() { return repository().eta_cameras(); }
  Camera_Repository& cameras() { return repository().cameras(); }

  /// True when what is answered from now on is what is stored.
  bool reopen() { return site_under_test().reopen(); }

  /// What is true now must be true of what is stored.
  template <class Check>
  void now_and_after_reopening(Check check) {
    {
      SCOPED_TRACE("now");
      check();
    }
    if (reopen()) {
      SCOPED_TRACE("after reopening");
      check();
    }
  }

  /// Looks past the repositories, where the implementation lets the suite do that.
  template <class Check>
  void look_behind(Check check) {
    if (reopen()) {
      if (const auto stored = site_under_test().look_behind()) {
        SCOPED_TRACE("behind the repositories");
        check(*stored);
      }
    }
  }

  /// Those texts that the implementation can store.
  Texts storable(const Texts& texts) const {
    Texts taken;
    for (const std::string& text : texts) {
      const bool is_plain =
          text.find('\0') == std::string::npos && text.find('\xFF') == std::string::npos;
      if (GetParam().stores_any_bytes || is_plain) {
        taken.push_back(text);
      }
    }
    return taken;
  }

  // Records that are stored when this returns.

  std::shared_ptr<trigger> given_trigger(std::uint64_t id,
                                         std::initializer_list<Trigger_Source> sources = {}) {
    const auto record = a_trigger(id, sources);
    EXPECT_TRUE(triggers().add(record));
    return record;
  }

  std::shared_ptr<metadata_event_subscription> given_topic_subscription(
      std::uint64_t camera_id, const std::string& topic,
      std::initializer_list<std::uint64_t> trigger_ids) {
    const auto record = a_topic_subscription(camera_id, topic, trigger_ids);
    EXPECT_TRUE(subscriptions().add(record));
    return record;
  }

  std::shared_ptr<eta_camera> given_eta_camera(std::uint64_t camera_id,
                                               std::initializer_list<std::uint64_t> trigger_ids) {
    const auto record = an_eta_camera(camera_id, trigger_ids);
    EXPECT_TRUE(eta_cameras().add(record));
    return record;
  }

  // What is stored, as texts and ids.

  Texts all_subscriptions() { return texts_of(subscriptions().get_stale({})); }
  Texts all_eta_cameras() { return texts_of(eta_cameras().get_all()); }

  // Each of these throws std::logic_error where there is none, which fails the test.

  std::shared_ptr<schedule> schedule_of_id(std::uint64_t id) {
    return require(repository().schedules().get_by_id(id), "schedule", id);
  }

  std::shared_ptr<trigger> trigger_of_id(std::uint64_t id) {
    return require(triggers().find_by_id(id), "trigger", id);
  }

  std::shared_ptr<metadata_event_subscription> subscription_of_id(std::uint64_t id) {
    for (const auto& record : subscriptions().get_stale({})) {
      if (record && record->id == id) {
        return record;
      }
    }
    return require(std::shared_ptr<metadata_event_subscription>(), "subscription", id);
  }

  std::shared_ptr<eta_camera> detection_of_camera(std::uint64_t camera_id) {
    return require(eta_cameras().get_by_camera_id(camera_id), "detection record of camera",
                   camera_id);
  }

  // What is expected. Which ids new records get is left to the implementation.

  static Ids in_order(std::set<std::uint64_t> ids) { return {ids.begin(), ids.end()}; }

  static Texts texts_in_order(const std::map<std::uint64_t, std::string>& texts_by_id) {
    Texts texts;
    for (const auto& [id, text] : texts_by_id) {
      texts.push_back(text);
    }
    return texts;
  }

  using Text_Of_Id = std::pair<const std::uint64_t, std::string>;

  static Text_Of_Id topic_subscription(std::uint64_t id, std::uint64_t camera_id,
                                       const std::string& topic, const Ids& trigger_ids) {
    return {id,
            fmt::format("subscription {0} \"{1}\" camera {2} topic \"{1}\" category none tags [] "
                        "cameras [] triggers [{3}]",
                        id, topic, camera_id, fmt::join(trigger_ids, " "))};
  }

  static Text_Of_Id detection(std::uint64_t id, std::uint64_t camera_id, const Ids& trigger_ids) {
    return {id, fmt::format("detection {} camera {} triggers [{}]", id, camera_id,
                            fmt::join(trigger_ids, " "))};
  }

 private:
  template <class Record>
  static std::shared_ptr<Record> require(std::shared_ptr<Record> record, const std::string& kind,
                                         std::uint64_t id) {
    if (!record) {
      throw std::logic_error("there is no " + kind + ' ' + std::to_string(id));
    }
    return record;
  }

  std::unique_ptr<Site_Under_Test> site_under_test_;
};

inline std::string name_of_implementation(
    const testing::TestParamInfo<Contract_Implementation>& info) {
  return info.param.name;
}

}  // namespace kuv::test
