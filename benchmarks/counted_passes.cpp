// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only

// Makes a pass of each kind over a site, each in a call of counted_pass, so that their instructions
// can be counted: see benchmarks/count_instructions.py. Prints the name of the site, and of each
// pass how many statements it ran on SQLite and how many round trips it made to PostgreSQL.
//
//     counted_passes DATABASE SIZE

#include <json/writer.h>

#include <functional>
#include <iostream>
#include <string>
#include <vector>

#include "benchmarks/pass_runner.h"
#include "benchmarks/run_program.h"
#include "benchmarks/site_generator.h"
#include "benchmarks/statement_meter.h"

/// Found by this name in the counts, so that no copy of it may be called instead.
extern "C" [[gnu::noipa]] void counted_pass(const std::function<void()>& pass) {
  pass();
}

namespace kuv::benchmarks {
namespace {

Json::Value count(const std::function<Measured_Pass()>& pass) {
  const std::size_t before = statements_so_far();
  Measured_Pass measured;
  counted_pass([&] { measured = pass(); });
  Json::Value counts;
  counts["statements"] = Json::UInt64(statements_so_far() - before);
  counts["round trips"] = Json::UInt64(measured.round_trips);
  return counts;
}

int run(const std::vector<std::string>& arguments) {
  if (arguments.size() != 2) {
    std::cerr << "counted_passes DATABASE SIZE\n";
    return 64;
  }
  meter_statements();
  const Site_Size size = site_of_text(arguments[1]);
  const Json::Value config = make_config(size);
  const Json::Value changed = with_one_trigger_changed(config, size);
  Pass_Runner runner(arguments[0]);
  store_inventory(runner.database(), make_inventory(size));

  Json::Value said;
  said["site"] = size.name;
  Json::Value& passes = said["passes"];
  passes["first apply"] = count([&] { return runner.update(config, Measuring::time); });
  passes["unchanged refresh"] = count([&] { return runner.refresh(Measuring::time); });
  passes["one trigger changed"] = count([&] { return runner.update(changed, Measuring::time); });
  std::cout << said << '\n';
  return 0;
}

}  // namespace
}  // namespace kuv::benchmarks

int main(int count, char** arguments) {
  return kuv::benchmarks::run_program("counted_passes", count, arguments, kuv::benchmarks::run);
}
