// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <future>
#include <mutex>
#include <thread>

#include "embedded_server/persistent/database_test.h"
#include "support/log_capture.h"
#include "vemora/embedded_server/host/trigger_host.h"

namespace kuv::test {
namespace {

using Status = Pass_Outcome::Status;
using testing::ElementsAre;

std::string config_with_trigger(std::uint64_t id) {
  return fmt::format(R"({{"triggers": [{{"id": {}, "name": "", "tags": {{}}, "sources": [
      {{"type": "onvif-metadata", "onvifTopic": "a"}}]}}]}})",
                     id);
}

/// The services of a server, which notice when a pass tells them something amid another one.
class Services : public capture::Manager, public Trigger_Notification_Pusher {
 public:
  void reconcile_metadata_stream(std::uint64_t) override {
    tell([] {});
  }

  void stop() override {}

  void apply_trigger_state(Trigger_Config_State state) override {
    tell([&] { last_trigger = state.applied_triggers.begin()->first; });
  }

  std::atomic<int> interruptions{0};
  std::uint64_t last_trigger = 0;
  std::function<void()> when_first_told = [] {};

 private:
  template <class Note>
  void tell(Note note) {
    if (++told_ != 1) {
      ++interruptions;
    }
    std::call_once(first_, when_first_told);
    std::this_thread::yield();
    note();
    --told_;
  }

  std::atomic<int> told_{0};
  std::once_flag first_;
};

/// A site, a host of it and the services that the host tells.
class Hosted_Site : public Database_Fixture {
 public:
  Hosted_Site() : Database_Fixture({"sqlite", [] { return std::make_unique<SQLite_Place>(); }}) {
    site.given_server(server_id);
    site.given_camera(10).with_topic("a");
    host = std::make_unique<Trigger_Host>(database(), server_id, Host_Services{services, services});
  }

  Pass_Outcome apply(std::uint64_t trigger_id) {
    return host->apply(Json_Document(config_with_trigger(trigger_id)), nullptr);
  }

  Rows triggers() { return foreign_program().query("SELECT id FROM trigger_record"); }

  std::shared_ptr<Services> services = std::make_shared<Services>();
  std::unique_ptr<Trigger_Host> host;

 private:
  Log_Capture log_;
};

TEST(Threads_Of_Hosts, take_turns_on_one_host_and_what_was_told_last_is_stored) {
  Hosted_Site site;
  std::atomic<int> done{0};
  const auto work = [&](std::uint64_t first) {
    for (std::uint64_t id = first; id < first + 10; ++id) {
      done += site.apply(id).status == Status::done ? 1 : 0;
      done += site.host->refresh().status == Status::done ? 1 : 0;
      EXPECT_THAT(site.host->check(Json_Document(config_with_trigger(id)), nullptr),
                  testing::IsEmpty());
    }
  };

  std::thread other(work, 100);
  work(200);
  other.join();

  EXPECT_EQ(done, 40);
  EXPECT_EQ(site.services->interruptions, 0);
  const std::uint64_t last = site.services->last_trigger;
  EXPECT_TRUE(last == 109 || last == 209) << last;
  EXPECT_EQ(read_documents(site.database()).config, config_with_trigger(last));
  EXPECT_THAT(site.triggers(), ElementsAre(Row{std::to_string(last)}));
}

TEST(Threads_Of_Hosts, work_on_different_databases_at_once) {
  Hosted_Site one;
  Hosted_Site two;
  std::promise<void> one_is_amid;
  std::promise<void> two_is_amid;
  const auto meet = [](std::promise<void>& own, std::promise<void>& others) {
    own.set_value();
    EXPECT_EQ(others.get_future().wait_for(std::chrono::minutes(2)), std::future_status::ready);
  };
  one.services->when_first_told = [&] { meet(one_is_amid, two_is_amid); };
  two.services->when_first_told = [&] { meet(two_is_amid, one_is_amid); };

  auto other = std::async(std::launch::async, [&] { return two.apply(8); });
  const Pass_Outcome outcome = one.apply(7);

  EXPECT_EQ(outcome.status, Status::done);
  EXPECT_EQ(other.get().status, Status::done);
  EXPECT_THAT(one.triggers(), ElementsAre(Row{"7"}));
  EXPECT_THAT(two.triggers(), ElementsAre(Row{"8"}));
}

}  // namespace
}  // namespace kuv::test
