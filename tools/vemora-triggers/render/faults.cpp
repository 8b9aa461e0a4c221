#include "tools/vemora-triggers/render/faults.h"

#include <fmt/format.h>

#include <algorithm>
#include <iostream>
#include <string_view>

#include "tools/vemora-triggers/render/json.h"
#include "tools/vemora-triggers/render/terminal.h"
#include "vemora/embedded_server/texts/letters.h"
#include "vemora/embedded_server/texts/printable.h"

namespace kuv::vemora::tools {
namespace {

using embedded_server::count_letters;
using embedded_server::first_letters;
using embedded_server::printable;

constexpr std::size_t widest_side = 60;  ///< letters before the place of a fault, and from it on
constexpr std::size_t most_excerpts = 100;
constexpr std::size_t most_messages = 1000;  ///< more than anybody reads

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

embedded_server::Surroundings surroundings_of(const Located_Fault& located) {
  if (located.document != nullptr) {
    return located.document->surroundings(located.fault.location);
  }
  const std::string_view line = located.line;
  const std::string_view before = first_letters(line, located.fault.location.column - 1);
  return {before, line.substr(before.size())};
}

/// What surrounds the fault in its line, with a mark under its place.
void print_excerpt(const Located_Fault& located) {
  const bool line_is_known = located.document != nullptr || !located.line.empty();
  if (!line_is_known || located.fault.location.column == 0) {
    return;
  }
  const auto [before, behind] = surroundings_of(located);
  const std::string shown_before = shown_end(before);
  std::cout << "    " << shown_before << shown_beginning(behind) << '\n'
            << "    " << std::string(count_letters(shown_before), ' ') << in_red("^") << '\n';
}

void print_message(const Located_Fault& located) {
  std::cout << place_of(located) << ": "
            << (located.warning.empty() ? in_red("error: ") : "warning: ")
            << printable(located.fault.message);
  if (located.id) {
    std::cout << fmt::format(" (trigger {})", *located.id);
  } else if (located.index) {
    std::cout << fmt::format(" (element {})", *located.index);
  }
  std::cout << '\n';
}

}  // namespace

Json::Value to_json(const Located_Fault& located) {
  Json::Value error(Json::objectValue);
  error["document"] = located.role;
  error["message"] = located.fault.message;
  if (!located.warning.empty()) {
    error["code"] = located.warning;
  }
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

void print_for_people(const Fault_List& faults) {
  const std::size_t told = std::min(faults.count, most_messages);
  for (std::size_t number = 0; number < told; ++number) {
    const Located_Fault located = faults.at(number);
    print_message(located);
    if (number < most_excerpts) {
      print_excerpt(located);
    }
  }
  if (told < faults.count) {
    const std::size_t more = faults.count - told;
    const std::string what = faults.at(told).warning.empty() ? "error" : "warning";
    std::cout << fmt::format("{} more {}; --json tells of each.\n", more,
                             more == 1 ? what : what + "s");
  }
}

std::string to_json_text(const Fault_List& faults) {
  Json_Texts texts;
  std::string list = "[";
  for (std::size_t number = 0; number < faults.count; ++number) {
    list += number == 0 ? "" : ",";
    list += texts.of(to_json(faults.at(number)));
  }
  return list + "]";
}

void print_faults(const Options& options, const Fault_List& faults) {
  if (options.json) {
    std::cout << R"({"errors":)" << to_json_text(faults) << R"(,"success":false})" << '\n';
  } else {
    print_for_people(faults);
  }
}

void print_faults(const Options& options, const std::vector<Located_Fault>& faults) {
  print_faults(options, {faults.size(), [&](std::size_t number) { return faults[number]; }});
}

void print_check(const Options& options, const Fault_List& faults, const Fault_List& warnings) {
  const bool is_rejected = faults.count != 0 || (options.strict && warnings.count != 0);
  if (options.json) {
    std::cout << R"({"errors":)" << to_json_text(faults) << R"(,"success":)"
              << (is_rejected ? "false" : "true") << R"(,"warnings":)" << to_json_text(warnings)
              << "}\n";
    return;
  }
  print_for_people(faults);
  print_for_people(warnings);
  if (!is_rejected) {
    std::cout << "Valid.\n";
  } else if (faults.count == 0) {
    std::cout << "Valid, but rejected for its warnings (--strict).\n";
  }
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

void print_failure(const Options& options, const std::string& message, const std::string& stored) {
  if (!options.json) {
    std::cerr << "vemora-triggers: " << printable(message) << '\n';
    if (!stored.empty()) {
      std::cerr << "note: " << stored << '\n';
    }
    return;
  }
  Json::Value error(Json::objectValue);
  error["category"] = 1;
  error["message"] = message;
  Json::Value answer(Json::objectValue);
  answer["success"] = false;
  answer["errors"].append(error);
  if (!stored.empty()) {
    answer["remarks"].append(stored);
  }
  print_json(answer);
}

}  // namespace kuv::vemora::tools
