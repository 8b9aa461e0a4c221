#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>

#include "support/database_place.h"
#include "support/record_texts.h"
#include "support/site_builder.h"
#include "vemora/embedded_server/persistent/database.h"
#include "vemora/embedded_server/persistent/pass_scope.h"
#include "vemora/embedded_server/persistent/site_reader.h"

namespace kuv::test {

using namespace kuv::vemora::embedded_server;

/// The ids that a mistake in signedness shows at.
inline constexpr std::uint64_t largest_signed_id = 9223372036854775807U;
inline constexpr std::uint64_t first_unsigned_id = 9223372036854775808U;
inline constexpr std::uint64_t largest_id = 18446744073709551615U;

/// Works on one fresh database.
class Database_Fixture {
 public:
  explicit Database_Fixture(const Database_Engine& engine);

  /// The database, with the site stored in it when it is first asked for.
  const std::shared_ptr<Database>& database();

  /// The database as other users of it would open it.
  std::shared_ptr<Database> open_again(
      std::chrono::milliseconds lock_wait = std::chrono::seconds(30));

  /// Lets go of everything in memory. Nothing else may hold it.
  void close() { database_.reset(); }

  const Database_Engine& engine() const { return engine_; }
  std::string location() const { return place_->location(); }
  Foreign_Program& foreign_program();

  Site_Builder site;
  static constexpr std::uint64_t server_id = 1;

 private:
  Database_Engine engine_;
  std::unique_ptr<Database_Place> place_;
  std::shared_ptr<Database> database_;
  bool exists_ = false;
  std::unique_ptr<Foreign_Program> foreign_program_;
};

/// A test of the database itself, on every engine.
class Database_Test : public testing::TestWithParam<Database_Engine>, public Database_Fixture {
 protected:
  Database_Test() : Database_Fixture(GetParam()) {}
};

std::string name_of_engine(const testing::TestParamInfo<Database_Engine>& info);

/// Whether the calls of a test are made in one pass, or each on its own.
enum class Joining { one_pass, no_pass };

struct Contract {
  Database_Engine engine;
  Joining joining;
};

std::ostream& operator<<(std::ostream& stream, const Contract& contract);

/// A test of what the repositories promise, on every engine, inside a pass and outside one.
class Contract_Test : public testing::TestWithParam<Contract>, public Database_Fixture {
 protected:
  Contract_Test() : Database_Fixture(GetParam().engine) {}

  // The repositories; the first call begins the pass.
  Repository& repository();
  Trigger_Repository& triggers() { return repository().triggers(); }
  Metadata_Event_Subscription_Repository& subscriptions() {
    return repository().metadata_event_subscriptions();
  }
  ETA_Camera_Repository& eta_cameras() { return repository().eta_cameras(); }
  Camera_Repository& cameras() { return repository().cameras(); }

  /// Ends the pass, closes the database and opens it again.
  void reopen();

  /// What is true in the pass must be true of what it stored.
  template <class Check>
  void now_and_after_reopening(Check check) {
    {
      SCOPED_TRACE("now");
      check();
    }
    reopen();
    SCOPED_TRACE("after reopening");
    check();
  }

  // Records that are stored when this returns.
  std::shared_ptr<trigger> given_trigger(std::uint64_t id,
                                         std::initializer_list<Trigger_Source> sources = {});
  std::shared_ptr<metadata_event_subscription> given_topic_subscription(
      std::uint64_t camera_id, const std::string& topic,
      std::initializer_list<std::uint64_t> trigger_ids);
  std::shared_ptr<eta_camera> given_eta_camera(std::uint64_t camera_id,
                                               std::initializer_list<std::uint64_t> trigger_ids);

  // Records that are not stored.
  std::shared_ptr<camera> camera_of_id(std::uint64_t id);
  std::shared_ptr<metadata_event_subscription> a_topic_subscription(
      std::uint64_t camera_id, const std::string& topic,
      std::initializer_list<std::uint64_t> trigger_ids);
  std::shared_ptr<eta_camera> an_eta_camera(std::uint64_t camera_id,
                                            std::initializer_list<std::uint64_t> trigger_ids);

  /// Every subscription as a text.
  std::vector<std::string> all_subscriptions() { return texts_of(subscriptions().get_stale({})); }
  std::vector<std::string> all_eta_cameras() { return texts_of(eta_cameras().get_all()); }
  std::shared_ptr<metadata_event_subscription> subscription_of_id(std::uint64_t id);

 private:
  std::unique_ptr<Pass_Scope> pass_;
  std::shared_ptr<Repository> repository_;
};

std::vector<Contract> contracts();
std::string name_of_contract(const testing::TestParamInfo<Contract>& info);

}  // namespace kuv::test
