// What the library does without a database: parsing, and log calls that nobody reads.
#include <benchmark/benchmark.h>
#include <json/reader.h>
#include <json/writer.h>

#include <iostream>

#include "benchmarks/empty_repositories.h"
#include "vemora/embedded_server/logging/console.h"
#include "vemora/platform/logging/source.h"
#include "vemora/trigger_parser/vemora_trigger_parser.h"

namespace kuv::benchmarks {
namespace {

constexpr int triggers_of_document = 100'000;

/// A trigger of some five hundred bytes.
Json::Value make_trigger(int number) {
  Json::Value trigger;
  trigger["id"] = number + 1;
  trigger["name"] = "Somebody crosses the line at gate " + std::to_string(number);
  trigger["tags"]["camera"]["area"][0] = "gate " + std::to_string(number % 50);
  trigger["tags"]["camera"]["area"][1] = "dock " + std::to_string(number % 70);
  trigger["tags"]["server"]["site"] = Json::Value();
  for (int place = 0; place < 2; ++place) {
    Json::Value source;
    source["type"] = "onvif-metadata";
    source["onvifTopic"] =
        "tns1:RuleEngine/LineDetector/Crossed/Rule_" + std::to_string((number + place) % 30);
    trigger["sources"].append(source);
  }
  Json::Value source;
  source["type"] = "object-detection";
  source["searchItem"]["type"] = "person";
  source["searchItem"]["motionRequired"] = true;
  source["activityDuration"]["mode"] = "object-track";
  source["activityDuration"]["minDurationMs"] = 1500;
  trigger["sources"].append(source);
  return trigger;
}

const std::string& document_text() {
  static const std::string text = [] {
    Json::Value document;
    for (int number = 0; number < triggers_of_document; ++number) {
      document["triggers"].append(make_trigger(number));
    }
    return Json::writeString(Json::StreamWriterBuilder(), document);
  }();
  return text;
}

Json::Value read_document() {
  const std::string& text = document_text();
  Json::Value document;
  std::string errors;
  const std::unique_ptr<Json::CharReader> reader(Json::CharReaderBuilder().newCharReader());
  reader->parse(text.data(), text.data() + text.size(), &document, &errors);
  return document;
}

/// The floor of parsing: the JSON library reads the same text.
void json_library_reads_the_text(benchmark::State& state) {
  for (auto step : state) {
    benchmark::DoNotOptimize(read_document());
  }
  state.counters["bytes"] = static_cast<double>(document_text().size());
}
BENCHMARK(json_library_reads_the_text)->Unit(benchmark::kMillisecond);

void parse_trigger_configs(benchmark::State& state) {
  const Json::Value document = read_document();
  vemora::Vemora_Trigger_Parser parser(make_empty_repositories(), 1);
  std::size_t parsed = 0;
  for (auto step : state) {
    parsed = parser.parse_trigger_configs(document, {}).size();
  }
  state.counters["triggers"] = static_cast<double>(parsed);
}
BENCHMARK(parse_trigger_configs)->Unit(benchmark::kMillisecond);

void log_call_with_logging_off(benchmark::State& state) {
  kuv::logging::log_to(std::cerr, std::nullopt);
  kuv::logging::Source source("Benchmark");
  for (auto step : state) {
    source.log(kuv::logging::severity_level::info, "trigger {} of {}", 7, "gate");
  }
}
BENCHMARK(log_call_with_logging_off);

void log_call_below_the_level(benchmark::State& state) {
  kuv::logging::log_to(std::cerr, kuv::logging::severity_level::error);
  kuv::logging::Source source("Benchmark");
  for (auto step : state) {
    source.log(kuv::logging::severity_level::info, "trigger {} of {}", 7, "gate");
  }
  kuv::logging::log_to(std::cerr, std::nullopt);
}
BENCHMARK(log_call_below_the_level);

}  // namespace
}  // namespace kuv::benchmarks

BENCHMARK_MAIN();
