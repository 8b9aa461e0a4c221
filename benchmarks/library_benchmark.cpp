// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only

// Parsing, beside the JSON library reading the same text.
#include <benchmark/benchmark.h>
#include <json/reader.h>
#include <json/writer.h>

#include "benchmarks/empty_repositories.h"
#include "benchmarks/heap_meter.h"
#include "tools/vemora-triggers/heap/heap.h"
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
    Json::StreamWriterBuilder compact;
    compact["indentation"] = "";
    return Json::writeString(compact, document);
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

/// What was made is released at nobody's expense.
template <class Action>
void without_timing(benchmark::State& state, Action action) {
  state.PauseTiming();
  action();
  settle_heap();
  state.ResumeTiming();
}

/// The floor of parsing: the JSON library reads the same text.
void json_library_reads_the_text(benchmark::State& state) {
  document_text();
  settle_heap();
  for (auto step : state) {
    Json::Value document = read_document();
    without_timing(state, [&] { document = Json::Value(); });
  }
  state.counters["bytes"] = static_cast<double>(document_text().size());
}
BENCHMARK(json_library_reads_the_text)->Unit(benchmark::kMillisecond);

void parse_trigger_configs(benchmark::State& state) {
  document_text();
  settle_heap();
  const Json::Value document = read_document();
  vemora::Vemora_Trigger_Parser parser(make_empty_repositories(), 1);
  std::size_t parsed = 0;
  for (auto step : state) {
    auto configs = parser.parse_trigger_configs(document, {});
    without_timing(state, [&] {
      parsed = configs.size();
      configs.clear();
    });
  }
  state.counters["triggers"] = static_cast<double>(parsed);
}
BENCHMARK(parse_trigger_configs)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace kuv::benchmarks

int main(int count, char** arguments) {
  kuv::vemora::tools::set_up_heap();
  benchmark::Initialize(&count, arguments);
  benchmark::RunSpecifiedBenchmarks();
}
