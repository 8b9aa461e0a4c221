#include "embedded_server/persistent/database_test.h"

namespace kuv::test {

Database_Fixture::Database_Fixture(const Database_Engine& engine)
    : engine_(engine), place_(engine.make_place()) {}

const std::shared_ptr<Database>& Database_Fixture::database() {
  if (!database_ && exists_) {
    database_ = open_again();
  } else if (!database_) {
    database_ = Database::open(location(), Database::Open_Mode::create_if_absent);
    site.store_in(database_);
    exists_ = true;
  }
  return database_;
}

std::shared_ptr<Database> Database_Fixture::open_again(std::chrono::milliseconds lock_wait) {
  return Database::open(location(), Database::Open_Mode::existing, lock_wait);
}

Foreign_Program& Database_Fixture::foreign_program() {
  if (!exists_) {
    database();
  }
  if (!foreign_program_) {
    foreign_program_ = place_->foreign_program();
  }
  return *foreign_program_;
}

std::string name_of_engine(const testing::TestParamInfo<Database_Engine>& info) {
  return info.param.name;
}

Repository& Contract_Test::repository() {
  if (!repository_) {
    repository_ = make_repository(database());
    if (GetParam().joining == Joining::one_pass) {
      pass_ = std::make_unique<Pass_Scope>(database(), server_id);
    }
  }
  return *repository_;
}

void Contract_Test::reopen() {
  if (pass_) {
    pass_->end();
  }
  repository_.reset();
  pass_.reset();
  close();
}

std::shared_ptr<trigger> Contract_Test::given_trigger(
    std::uint64_t id, std::initializer_list<Trigger_Source> sources) {
  const auto record = a_trigger(id, sources);
  EXPECT_TRUE(triggers().add(record));
  return record;
}

std::shared_ptr<metadata_event_subscription> Contract_Test::given_topic_subscription(
    std::uint64_t camera_id, const std::string& topic,
    std::initializer_list<std::uint64_t> trigger_ids) {
  const auto record = a_topic_subscription(camera_id, topic, trigger_ids);
  EXPECT_TRUE(subscriptions().add(record));
  return record;
}

std::shared_ptr<eta_camera> Contract_Test::given_eta_camera(
    std::uint64_t camera_id, std::initializer_list<std::uint64_t> trigger_ids) {
  const auto record = an_eta_camera(camera_id, trigger_ids);
  EXPECT_TRUE(eta_cameras().add(record));
  return record;
}

std::shared_ptr<camera> Contract_Test::camera_of_id(std::uint64_t id) {
  auto record = std::make_shared<camera>();
  record->id = id;
  return record;
}

std::shared_ptr<metadata_event_subscription> Contract_Test::a_topic_subscription(
    std::uint64_t camera_id, const std::string& topic,
    std::initializer_list<std::uint64_t> trigger_ids) {
  auto record = std::make_shared<metadata_event_subscription>();
  record->name = topic;
  record->onvif_topic = topic;
  record->camera = camera_of_id(camera_id);
  for (const std::uint64_t trigger_id : trigger_ids) {
    record->add_trigger(a_trigger(trigger_id));
  }
  return record;
}

std::shared_ptr<eta_camera> Contract_Test::an_eta_camera(
    std::uint64_t camera_id, std::initializer_list<std::uint64_t> trigger_ids) {
  auto record = std::make_shared<eta_camera>();
  record->camera = camera_of_id(camera_id);
  for (const std::uint64_t trigger_id : trigger_ids) {
    record->add_trigger(a_trigger(trigger_id));
  }
  return record;
}

std::shared_ptr<metadata_event_subscription> Contract_Test::subscription_of_id(std::uint64_t id) {
  for (const auto& record : subscriptions().get_stale({})) {
    if (record->id == id) {
      return record;
    }
  }
  return nullptr;
}

std::vector<Contract> contracts() {
  std::vector<Contract> all;
  for (const Database_Engine& engine : database_engines()) {
    all.push_back({engine, Joining::one_pass});
    all.push_back({engine, Joining::no_pass});
  }
  return all;
}

std::ostream& operator<<(std::ostream& stream, const Contract& contract) {
  return stream << contract.engine
                << (contract.joining == Joining::one_pass ? "_in_a_pass" : "_on_its_own");
}

std::string name_of_contract(const testing::TestParamInfo<Contract>& info) {
  return testing::PrintToString(info.param);
}

}  // namespace kuv::test
