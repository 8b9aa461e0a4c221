// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only

// A process that works on a database as it is told on standard input: database_user LOCATION
// WAIT_MS.

#include <chrono>
#include <iostream>
#include <memory>
#include <sstream>
#include <string>

#include "vemora/embedded_server/persistent/database.h"
#include "vemora/embedded_server/persistent/inventory.h"
#include "vemora/embedded_server/persistent/pass_scope.h"
#include "vemora/testing/builders/record_texts.h"

namespace {

using namespace kuv::vemora;
using namespace kuv::vemora::embedded_server;

class Database_User {
 public:
  Database_User(const std::string& location, std::chrono::milliseconds wait)
      : database_(Database::open(location, Database::Open_Mode::existing, wait)),
        repository_(make_repository(database_)) {}

  std::string take(const std::string& step, const std::string& argument) {
    if (step == "begin") {
      pass_ = std::make_unique<Pass_Scope>(database_, 1);
    } else if (step == "add") {
      return repository_->triggers().add(kuv::test::a_trigger(std::stoull(argument))) ? "done"
                                                                                      : "refused";
    } else if (step == "find") {
      return kuv::test::text_of(repository_->triggers().find_by_id(std::stoull(argument)));
    } else if (step == "clean") {
      repository_->eta_cameras().delete_stale();
    } else if (step == "end") {
      pass_->end();
    } else if (step == "store") {
      pass_->store({argument, std::nullopt}, {});
    } else if (step == "config") {
      return pass_->documents().config.value_or("none");
    } else if (step == "let-go") {
      pass_.reset();
    } else if (step == "init") {
      store_inventory(database_, Inventory());
    } else {
      return "unknown step " + step;
    }
    return "done";
  }

 private:
  std::shared_ptr<Database> database_;
  std::shared_ptr<Repository> repository_;
  std::unique_ptr<Pass_Scope> pass_;
};

}  // namespace

int main(int, char** arguments) {
  Database_User user(arguments[1], std::chrono::milliseconds(std::stoi(arguments[2])));
  for (std::string line; std::getline(std::cin, line);) {
    std::istringstream words(line);
    std::string step;
    std::string argument;
    words >> step >> argument;
    try {
      std::cout << user.take(step, argument) << std::endl;
    } catch (const std::exception& error) {
      std::cout << error.what() << std::endl;
    }
  }
}
