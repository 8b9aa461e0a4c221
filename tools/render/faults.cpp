#include "tools/render/faults.h"

#include <fmt/format.h>

#include <iostream>
#include <string_view>

#include "tools/render/json.h"
#include "tools/render/terminal.h"
#include "vemora/embedded_server/texts/letters.h"
#include "vemora/embedded_server/texts/printable.h"

namespace kuv::vemora::tools {
namespace {

using embedded_server::count_letters;
using embedded_server::first_letters;
using embedded_server::printable;

constexpr std::size_t widest_side = 60;  ///< letters before the place of a fault, and from it on
constexpr std::size_t most_excerpts = 100;

std::string place_of(const Located_Fault& located) {
  std::string place = located.path.empty() ? "stored " + located.role : printable(located.path);
  if (located.fault.location.line != 0) {
    place += fmt::format(":{}:{}", located.fault.location.line, located.fault.location.column);
  }
  return place;
}

/// The text with "..." in the place of all but its last letters.
std::string shown_end(std::string_view text) {
  const std::size_t letters = count_letters(text);
  if (letters <= widest_side) {
    return printable(text);
  }
  text.remove_prefix(first_letters(text, letters - widest_side).size());
  return "..." + printable(text);
}

std::string shown_beginning(std::string_view text) {
  const std::string_view beginning = first_letters(text, widest_side);
  return printable(beginning) + (beginning.size() < text.size() ? "..." : "");
}

/// What surrounds the fault in its line, with a mark under its place.
void print_excerpt(const Located_Fault& located) {
  if (located.line.empty() || located.fault.location.column == 0) {
    return;
  }
  const std::string_view before = first_letters(located.line, located.fault.location.column - 1);
  const std::string shown_before = shown_end(before);
  std::cout << "    " << shown_before << shown_beginning(located.line.substr(before.size())) << '\n'
            << "    " << std::string(count_letters(shown_before), ' ') << in_red("^") << '\n';
}

void print_message(const Located_Fault& located) {
  std::cout << place_of(located) << ": " << in_red("error: ") << printable(located.fault.message);
  if (located.id) {
    std::cout << fmt::format(" (trigger {})", *located.id);
  } else if (located.index) {
    std::cout << fmt::format(" (element {})", *located.index);
  }
  std::cout << '\n';
}

/// Every fault, and of the first ones the line.
void print_for_people(const std::vector<Located_Fault>& faults) {
  std::size_t excerpts = 0;
  for (const Located_Fault& located : faults) {
    print_message(located);
    if (excerpts++ < most_excerpts) {
      print_excerpt(located);
    }
  }
}

}  // namespace

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

void print_for_people(const Located_Fault& located) {
  print_message(located);
  print_excerpt(located);
}

void print_faults(const Options& options, const std::vector<Located_Fault>& faults) {
  if (!options.json) {
    print_for_people(faults);
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

void print_wrong_usage(bool json, const std::string& message) {
  if (!json) {
    std::cerr << "vemora-triggers: " << printable(message)
              << "\nRun with --help for more information.\n";
    return;
  }
  Json::Value answer(Json::objectValue);
  answer["success"] = false;
  answer["errors"][0]["message"] = message;
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
