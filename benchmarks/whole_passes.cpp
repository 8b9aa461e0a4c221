// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only

// Times whole passes beside their floors, and prints a JSON array of figures: see scripts/bench.
//
//     whole_passes FOLDER|URL-PREFIX REPETITIONS [SIZE...]

#include <fmt/format.h>
#include <json/writer.h>

#include <cstdlib>
#include <filesystem>
#include <functional>
#include <iostream>
#include <vector>

#include "benchmarks/floor_of_place.h"
#include "benchmarks/floor_process.h"
#include "benchmarks/heap_meter.h"
#include "benchmarks/pass_runner.h"
#include "benchmarks/refused_text.h"
#include "benchmarks/run_program.h"
#include "benchmarks/site_generator.h"
#include "benchmarks/stopwatch.h"

namespace kuv::benchmarks {
namespace {

/// One scenario on one site: every repetition's time, with the floor's taken right after it, with
/// the C library's allocator and with the one of the passes.
struct Figure {
  Json::Value json;

  Figure(const std::string& site, const std::string& scenario) {
    json["site"] = site;
    json["scenario"] = scenario;
    json["seconds"] = Json::Value(Json::arrayValue);
    json["floor"] = Json::Value(Json::arrayValue);
    json["floorWithSameAllocator"] = Json::Value(Json::arrayValue);
  }

  void add(const Measured_Pass& pass, Measuring measuring) {
    if (measuring == Measuring::time) {
      json["seconds"].append(pass.seconds);
    } else {
      json["peakHeap"] = static_cast<Json::UInt64>(pass.peak_heap);
    }
    json["linksWritten"] = static_cast<Json::UInt64>(pass.links_written);
    json["linksDeleted"] = static_cast<Json::UInt64>(pass.links_deleted);
    json["errors"] = static_cast<Json::UInt64>(pass.errors);
    json["roundTrips"] = static_cast<Json::UInt64>(pass.round_trips);
  }
};

/// Where the databases of a run are.
class Place {
 public:
  explicit Place(std::string argument) : argument_(std::move(argument)) {}

  bool is_postgresql() const { return floor_.is_postgresql(); }

  /// A fresh database.
  std::string next() {
    if (is_postgresql()) {
      return fmt::format("{}bench_{}", argument_, ++count_);
    }
    const std::string path = argument_ + "/site.db";
    for (const char* suffix : {"", "-wal", "-shm", ".lock"}) {
      std::filesystem::remove(path + suffix);
    }
    return path;
  }

  void drop(const std::string& location) const {
    if (is_postgresql()) {
      drop_schema(location);
    }
  }

  const Floor_Place& floor() const { return floor_; }
  Floor_Process& floor_with_c_library() { return floor_with_c_library_; }

 private:
  std::string argument_;
  Floor_Place floor_{argument_};
  Floor_Process floor_with_c_library_{argument_};
  int count_ = 0;
};

/// All scenarios on one site.
class Site_Run {
 public:
  Site_Run(const Site_Size& size, Place& place, int repetitions)
      : size_(size), place_(place), repetitions_(repetitions), config_(make_config(size)) {}

  Json::Value run() {
    measure_first_apply();
    measure_unchanged_refresh();
    measure_one_trigger();
    measure_tags();
    measure_failing_triggers();
    measure_rejected_document();
    measure_half();
    runner_.reset();
    place_.drop(location_);
    return figures_;
  }

 private:
  /// A site without triggers.
  void begin_anew() {
    runner_.reset();
    if (!location_.empty()) {
      place_.drop(location_);
    }
    location_ = place_.next();
    runner_ = std::make_unique<Pass_Runner>(location_);
    store_inventory(runner_->database(), make_inventory(size_));
  }

  void report(Figure& figure) {
    std::cerr << fmt::format("{}: {} done\n", size_.name, figure.json["scenario"].asString());
    figures_.append(std::move(figure.json));
  }

  /// The heap is measured in a run of its own, the first; the others are timed. Where more than one
  /// is asked for, short runs are timed for a second, so that a moment in which the machine did
  /// something else is not all that was seen of them.
  void repeat(Figure& figure, const std::function<Measured_Pass(Measuring)>& run) {
    figure.add(run(Measuring::heap), Measuring::heap);
    const Stopwatch watch;
    const auto is_short = [&](int times) {
      return repetitions_ > 1 && times < 10 * repetitions_ && watch.seconds() < 1;
    };
    for (int times = 0; times < repetitions_ || is_short(times); ++times) {
      figure.add(run(Measuring::time), Measuring::time);
    }
    report(figure);
  }

  void measure_first_apply() {
    Figure figure(size_.name, "first apply");
    repeat(figure, [&](Measuring measuring) {
      begin_anew();
      const Measured_Pass pass = runner_->update(config_, measuring);
      if (measuring == Measuring::heap) {
        rows_ = read_plain_rows(runner_->database());
        figure.json["links"] = static_cast<Json::UInt64>(rows_.subscription_links.size() +
                                                         rows_.detection_links.size());
        place_.floor_with_c_library().take_rows(location_);
      } else {
        figure.json["floor"].append(place_.floor_with_c_library().write());
        figure.json["floorWithSameAllocator"].append(place_.floor().write(rows_));
      }
      return pass;
    });
  }

  void measure_unchanged_refresh() {
    Figure figure(size_.name, "unchanged refresh");
    repeat(figure, [&](Measuring measuring) {
      const Measured_Pass pass = runner_->refresh(measuring);
      const double floor = place_.floor_with_c_library().read();
      vemora::Trigger_Config_State state;
      const double floor_with_same_allocator = place_.floor().read(state);
      if (measuring == Measuring::heap) {
        const Heap_Meter meter;
        const vemora::Trigger_Config_State copy = state;
        figure.json["snapshotHeap"] = static_cast<Json::UInt64>(meter.now());
      } else {
        figure.json["floor"].append(floor);
        figure.json["floorWithSameAllocator"].append(floor_with_same_allocator);
      }
      return pass;
    });
  }

  /// Two documents in turn, each time with the same change.
  Measured_Pass change_and_back(const Json::Value& other, Measuring measuring) {
    const Measured_Pass pass = runner_->update(other, measuring);
    runner_->update(config_, Measuring::time);
    return pass;
  }

  void measure_turns(const std::string& scenario, const Json::Value& other) {
    Figure figure(size_.name, scenario);
    repeat(figure, [&](Measuring measuring) { return change_and_back(other, measuring); });
  }

  /// Its floor is an unchanged refresh.
  void measure_one_trigger() {
    Figure figure(size_.name, "one trigger changed");
    const Json::Value other = with_one_trigger_changed(config_, size_);
    repeat(figure, [&](Measuring measuring) {
      const Measured_Pass pass = change_and_back(other, measuring);
      const Measured_Pass refresh = runner_->refresh(Measuring::time);
      if (measuring == Measuring::time) {
        figure.json["floor"].append(refresh.seconds);
      }
      return pass;
    });
  }

  void measure_half() {
    measure_turns("half of the triggers removed", with_half_of_the_triggers(config_));
  }

  void measure_tags() {
    Figure figure(size_.name, "one tag changed on a tenth of the cameras");
    const auto inventory = make_inventory(size_);
    repeat(figure, [&](Measuring measuring) {
      store_inventory(runner_->database(), with_a_tenth_of_the_tags_changed(inventory, size_));
      const Measured_Pass pass = runner_->refresh(measuring);
      store_inventory(runner_->database(), inventory);
      runner_->refresh(Measuring::time);
      return pass;
    });
  }

  void measure_failing_triggers() {
    const Refused_Text refused(*runner_->database(), place_.is_postgresql());
    measure_turns("one trigger in a hundred failing",
                  with_one_name_in_a_hundred(config_, refused.text()));
  }

  void measure_rejected_document() {
    Figure figure(size_.name, "a document rejected at its last trigger");
    const Json::Value bad = with_a_bad_last_trigger(config_);
    repeat(figure, [&](Measuring measuring) { return runner_->update(bad, measuring, false); });
  }

  Site_Size size_;
  Place& place_;
  int repetitions_;
  Json::Value config_;
  std::string location_;
  std::unique_ptr<Pass_Runner> runner_;
  Plain_Rows rows_;
  Json::Value figures_;
};

int run(const std::vector<std::string>& arguments) {
  if (arguments.size() < 2) {
    std::cerr << "whole_passes FOLDER|URL-PREFIX REPETITIONS [SIZE...]\n";
    return 64;
  }
  Place place(arguments[0]);
  Json::Value figures(Json::arrayValue);
  for (std::size_t argument = 2; argument < arguments.size(); ++argument) {
    Site_Run site(site_of_text(arguments[argument]), place, std::stoi(arguments[1]));
    for (const Json::Value& figure : site.run()) {
      figures.append(figure);
    }
  }
  std::cout << figures << '\n';
  return 0;
}

}  // namespace
}  // namespace kuv::benchmarks

int main(int count, char** arguments) {
  return kuv::benchmarks::run_program("whole_passes", count, arguments, kuv::benchmarks::run);
}
