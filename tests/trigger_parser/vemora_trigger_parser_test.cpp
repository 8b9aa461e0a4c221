// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include <gmock/gmock.h>

#include <cstring>
#include <stdexcept>
#include <type_traits>

#include "trigger_parser/parser_test.h"
#include "vemora/platform/errors/vemora_error.h"

namespace kuv::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr char unknown_server[] = "Failed to retrieve server tags due to invalid server ID";

struct Trigger_Parser_Of_A_Server : Parser_Test {
  Rejection server_error_of(const Json::Value& document) {
    try {
      parse_configs(document);
    } catch (const Internal_Error<std::logic_error>& error) {
      EXPECT_EQ(error.error_code, -2);
      return Rejection(error.what());
    }
    return Rejection("accepted");
  }
};

/// The place of a virtual operation in the table that servers were linked against.
template <class Operation>
std::size_t slot_of(Operation operation) {
  std::ptrdiff_t representation[2];
  static_assert(sizeof operation == sizeof representation);
  std::memcpy(representation, &operation, sizeof operation);
  return static_cast<std::size_t>(representation[0] - 1) / sizeof(void*);
}

TEST(Trigger_Parser_Interface, keeps_its_operations_in_the_slots_that_servers_call) {
  EXPECT_TRUE(std::has_virtual_destructor_v<Trigger_Parser>);  // which takes slots 0 and 1
  EXPECT_EQ(slot_of(&Trigger_Parser::parse_trigger_mapping), 2U);
  EXPECT_EQ(slot_of(&Trigger_Parser::parse_trigger_configs), 3U);
  EXPECT_EQ(slot_of(&Trigger_Parser::parse_config_properties), 4U);
}

TEST(Trigger_Parser_Interface, is_abstract_and_holds_nothing) {
  EXPECT_TRUE(std::is_abstract_v<Trigger_Parser>);
  EXPECT_EQ(sizeof(Trigger_Parser), sizeof(void*));
  EXPECT_TRUE((std::is_base_of_v<Trigger_Parser, Vemora_Trigger_Parser>));
}

TEST(Trigger_Parser_Interface, answers_through_a_pointer_to_the_interface) {
  const Log_Capture log;
  Fake_Database database;
  database.servers.records[9] = std::make_shared<server>();
  const std::unique_ptr<Trigger_Parser> parser =
      std::make_unique<Vemora_Trigger_Parser>(make_fake_repository(database), 9);

  EXPECT_THAT(parser->parse_trigger_mapping(json(R"({"triggerMapping": []})")), IsEmpty());
  EXPECT_THAT(parser->parse_trigger_configs(configuration({a_trigger()}), {}),
              ::testing::SizeIs(1));
  EXPECT_FALSE(parser->parse_config_properties(json("{}")).nack_delay);
}

TEST_F(Trigger_Parser_Of_A_Server, looks_nothing_up_while_it_is_made) {
  const Vemora_Trigger_Parser known(repository, 9);
  const Vemora_Trigger_Parser unknown(repository, 18446744073709551615U);
  const Vemora_Trigger_Parser without_database(nullptr, 0);

  EXPECT_THAT(fetched_servers(), IsEmpty());
  EXPECT_THAT(fetched_schedules(), IsEmpty());
}

/// A parser without a repository, and what a sink hears of its documents.
class Trigger_Parser_Without_A_Repository : public ::testing::Test {
 protected:
  struct Deaf_Sink : Fault_Sink {
    bool take(Parser_Fault fault) override {
      messages.push_back(fault.message);
      return true;
    }

    std::vector<std::string> messages;
  };

  /// The error that says that there is no repository; empty if there is none.
  template <class Parse>
  static std::string missing_repository(Parse parse) {
    try {
      parse();
      return "";
    } catch (const Internal_Error<std::logic_error>& error) {
      EXPECT_EQ(error.error_code, -2);
      return error.what();
    }
  }

  static constexpr const char* no_repository =
      "The trigger parser was constructed without a repository";
  const Log_Capture log;
  Deaf_Sink sink;
  Vemora_Trigger_Parser parser{nullptr, 9};
};

TEST_F(Trigger_Parser_Without_A_Repository, cannot_read_a_configuration) {
  const Json::Value document = json(R"({"triggers": []})");
  EXPECT_EQ(missing_repository([&] { parser.parse_trigger_configs(document, {}); }), no_repository);
  EXPECT_EQ(missing_repository([&] { parser.parse_trigger_configs(document, {}, sink); }),
            no_repository);
  EXPECT_THAT(sink.messages, IsEmpty());
}

TEST_F(Trigger_Parser_Without_A_Repository, cannot_read_a_mapping_that_names_a_schedule) {
  const Json::Value document =
      json(R"({"triggerMapping": [{"triggerIds": [1], "scheduleIds": [2]}]})");
  EXPECT_EQ(missing_repository([&] { parser.parse_trigger_mapping(document); }), no_repository);
  EXPECT_EQ(missing_repository([&] { parser.parse_trigger_mapping(document, sink); }),
            no_repository);
  EXPECT_THAT(sink.messages, IsEmpty());
}

TEST_F(Trigger_Parser_Without_A_Repository, rejects_a_wrong_document_before_it_misses_one) {
  EXPECT_THROW(parser.parse_trigger_configs(json("{}"), {}), Backend_Error<std::runtime_error>);
  EXPECT_THROW(parser.parse_trigger_mapping(json("{}")), Backend_Error<std::runtime_error>);
}

TEST_F(Trigger_Parser_Without_A_Repository, reads_what_needs_none) {
  const Json::Value mapping =
      json(R"({"triggerMapping": [{"triggerIds": [1], "scheduleIds": []}]})");
  EXPECT_THAT(parser.parse_trigger_mapping(mapping), ::testing::SizeIs(1));
  EXPECT_THAT(parser.parse_trigger_mapping(mapping, sink), ::testing::SizeIs(1));
  EXPECT_FALSE(parser.parse_config_properties(json("{}")).nack_delay);
  EXPECT_FALSE(parser.parse_config_properties(json("{}"), sink).nack_delay);
}

TEST_F(Trigger_Parser_Of_A_Server, shares_the_repository_as_long_as_it_lives) {
  const long before = repository.use_count();
  {
    const Vemora_Trigger_Parser another(repository, 9);
    EXPECT_EQ(repository.use_count(), before + 1);
  }
  EXPECT_EQ(repository.use_count(), before);
}

TEST_F(Trigger_Parser_Of_A_Server, looks_its_own_server_up_once_for_a_configuration) {
  parse_configs(configuration({a_trigger(1), a_trigger(2), a_trigger(3)}));
  EXPECT_THAT(fetched_servers(), ElementsAre(9));
}

TEST_F(Trigger_Parser_Of_A_Server, knows_server_ids_of_all_64_bits) {
  database.servers.records[18446744073709551615U] = database.servers.records.at(9);
  Vemora_Trigger_Parser last(repository, 18446744073709551615U);

  last.parse_trigger_configs(json(R"({"triggers": []})"), {});

  EXPECT_THAT(fetched_servers(), ElementsAre(18446744073709551615U));
}

TEST_F(Trigger_Parser_Of_A_Server, sees_tags_that_changed_since_the_last_configuration) {
  Json::Value trigger = a_trigger();
  trigger["tags"]["server"] = json(R"({"site": "north"})");
  const auto matches = [&] { return parse_only_config(configuration({trigger})).matches_server; };

  EXPECT_FALSE(matches());
  given_server_tags({{"site", {"north"}}});
  EXPECT_TRUE(matches());
  given_server_tags({{"site", {"south"}}});
  EXPECT_FALSE(matches());
  EXPECT_THAT(fetched_servers(), ElementsAre(9, 9, 9));
}

TEST_F(Trigger_Parser_Of_A_Server, cannot_read_a_configuration_on_a_server_that_is_not_stored) {
  given_server_is_unknown();

  EXPECT_EQ(server_error_of(json(R"({"triggers": []})")), unknown_server);
  EXPECT_EQ(server_error_of(configuration({a_trigger()})), unknown_server);
  EXPECT_EQ(server_error_of(configuration({json("5")})), unknown_server);
  EXPECT_THAT(fetched_servers(), ElementsAre(9, 9, 9));
}

TEST_F(Trigger_Parser_Of_A_Server, checks_the_document_itself_before_it_asks_for_the_server) {
  given_server_is_unknown();

  EXPECT_EQ(rejection_of_configs(json("[]")), "Trigger configuration must be a JSON object.");
  EXPECT_EQ(rejection_of_configs(json("{}")), "Missing \"triggers\" array.");
  EXPECT_THAT(fetched_servers(), IsEmpty());
}

TEST_F(Trigger_Parser_Of_A_Server, reads_mapping_and_properties_on_a_server_that_is_not_stored) {
  given_server_is_unknown();

  EXPECT_THAT(parse_mapping(json(R"({"triggerMapping": []})")), IsEmpty());
  EXPECT_FALSE(parse_properties(json("{}")).max_latency);
  EXPECT_THAT(fetched_servers(), IsEmpty());
}

TEST_F(Trigger_Parser_Of_A_Server, reports_an_unknown_server_as_an_internal_logic_error) {
  given_server_is_unknown();
  const auto parse = [&] { parse_configs(json(R"({"triggers": []})")); };

  EXPECT_THROW(parse(), std::logic_error);
  EXPECT_THROW(parse(), Internal_Error<std::exception>);
  EXPECT_THROW(parse(), Vemora_Error<std::exception>);
  try {
    parse();
  } catch (const std::runtime_error&) {
    FAIL() << "it is no runtime error";
  } catch (const std::exception& error) {
    EXPECT_STREQ(error.what(), unknown_server);
  }
}

TEST_F(Trigger_Parser_Of_A_Server, lets_failures_of_the_database_through_unchanged) {
  database.servers.fault = std::make_exception_ptr(Database_Is_Gone());
  EXPECT_THROW(parse_configs(configuration({a_trigger()})), Database_Is_Gone);

  database.servers.fault = std::make_exception_ptr(std::runtime_error("connection lost"));
  try {
    parse_configs(configuration({a_trigger()}));
    FAIL() << "nothing was thrown";
  } catch (const Vemora_Error<std::exception>&) {
    FAIL() << "it became another error";
  } catch (const std::runtime_error& error) {
    EXPECT_STREQ(error.what(), "connection lost");
  }
}

TEST_F(Trigger_Parser_Of_A_Server, keeps_nothing_of_a_document_that_it_rejected) {
  rejection_of_configs(configuration({a_trigger(7), a_trigger(7)}));

  EXPECT_THAT(parse_configs(configuration({a_trigger(7)})), ::testing::SizeIs(1));
}

}  // namespace
}  // namespace kuv::test
