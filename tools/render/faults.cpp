#include "tools/render/faults.h"

#include <fmt/format.h>

#include <iostream>

#include "tools/render/json.h"
#include "tools/render/terminal.h"

namespace kuv::vemora::tools {
namespace {

constexpr std::size_t widest_excerpt = 160;

Json::Value to_json(const Located_Fault& located) {
  Json::Value error(Json::objectValue);
  error["document"] = located.role;
  error["message"] = located.fault.message;
  if (located.index) {
    error["index"] = Json::UInt64(*located.index);
  }
  if (located.id) {
    error["id"] = Json::UInt64(*located.id);
  }
  if (located.fault.location.line != 0) {
    error["line"] = Json::UInt64(located.fault.location.line);
    error["column"] = Json::UInt64(located.fault.location.column);
  }
  return error;
}

std::string place_of(const Located_Fault& located) {
  std::string place = located.path.empty() ? "stored " + located.role : printable(located.path);
  if (located.fault.location.line != 0) {
    place += fmt::format(":{}:{}", located.fault.location.line, located.fault.location.column);
  }
  return place;
}

/// The line of the fault with a mark under its place; of a very long line, nothing.
void print_excerpt(const Located_Fault& located) {
  if (located.document == nullptr || located.fault.location.line == 0) {
    return;
  }
  const std::string line = located.document->line(located.fault.location.line);
  if (line.size() > widest_excerpt) {
    return;
  }
  const std::string before = printable(line.substr(0, located.fault.location.column - 1));
  std::cout << "    " << printable(line) << '\n'
            << "    " << std::string(before.size(), ' ') << in_red("^") << '\n';
}

void print_for_people(const Located_Fault& located) {
  std::cout << place_of(located) << ": " << in_red("error: ") << printable(located.fault.message);
  if (located.id) {
    std::cout << fmt::format(" (trigger {})", *located.id);
  } else if (located.index) {
    std::cout << fmt::format(" (element {})", *located.index);
  }
  std::cout << '\n';
  print_excerpt(located);
}

}  // namespace

void print_faults(const Options& options, const std::vector<Located_Fault>& faults) {
  if (!options.json) {
    for (const Located_Fault& located : faults) {
      print_for_people(located);
    }
    return;
  }
  Json::Value answer(Json::objectValue);
  answer["success"] = false;
  answer["errors"] = Json::Value(Json::arrayValue);
  for (const Located_Fault& located : faults) {
    answer["errors"].append(to_json(located));
  }
  print_json(answer);
}

void print_failure(const Options& options, const std::string& message) {
  if (!options.json) {
    std::cerr << "vemora-triggers: " << printable(message) << '\n';
    return;
  }
  Json::Value error(Json::objectValue);
  error["category"] = 1;
  error["message"] = message;
  Json::Value answer(Json::objectValue);
  answer["success"] = false;
  answer["errors"].append(error);
  print_json(answer);
}

}  // namespace kuv::vemora::tools
