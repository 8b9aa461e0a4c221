// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "tools/vemora-triggers/render/faults.h"

#include <fmt/format.h>

#include <algorithm>
#include <iostream>
#include <string_view>

#include "tools/vemora-triggers/render/json.h"
#include "tools/vemora-triggers/render/terminal.h"
#include "vemora/embedded_server/texts/characters.h"
#include "vemora/embedded_server/texts/display_width.h"
#include "vemora/embedded_server/texts/printable.h"

namespace kuv::vemora::tools {
namespace {

using embedded_server::count_characters;
using embedded_server::display_width;
using embedded_server::first_characters;
using embedded_server::printable;

constexpr std::size_t widest_side = 60;  ///< characters shown before a fault, and from it on
constexpr std::size_t most_excerpts = 100;
constexpr std::size_t most_messages = 1000;  ///< more than anyone reads

std::string location_of(const std::string& path, const std::string& role,
                        const embedded_server::Location& location) {
  std::string text = path.empty() ? "stored " + role : printable(path);
  if (location.line != 0) {
    text += fmt::format(":{}:{}", location.line, location.column);
  }
  return text;
}

/// A part of a line, with its tabs.
std::string with_tabs(std::string_view text) {
  std::string shown;
  for (std::size_t begin = 0; begin <= text.size();) {
    const std::size_t end = std::min(text.find('\t', begin), text.size());
    shown += printable(text.substr(begin, end - begin));
    shown += end < text.size() ? "\t" : "";
    begin = end + 1;
  }
  return shown;
}

/// The last characters of a text, after "..." if it is longer.
std::string shown_end(std::string_view text) {
  const std::size_t characters = count_characters(text);
  if (characters <= widest_side) {
    return with_tabs(text);
  }
  text.remove_prefix(first_characters(text, characters - widest_side).size());
  return "..." + with_tabs(text);
}

std::string shown_beginning(std::string_view text) {
  const std::string_view beginning = first_characters(text, widest_side);
  return with_tabs(beginning) + (beginning.size() < text.size() ? "..." : "");
}

embedded_server::Surroundings surroundings_of(const Located_Fault& located) {
  if (located.document != nullptr) {
    return located.document->surroundings(located.fault.location);
  }
  const std::string_view line = located.line;
  const std::string_view before = first_characters(line, located.fault.location.column - 1);
  return {before, line.substr(before.size())};
}

/// What takes the same room as a text, wherever a terminal has its tab stops.
std::string blanks_like(std::string_view text) {
  std::string blanks;
  while (!text.empty()) {
    const std::string_view part = text.substr(0, text.find('\t'));
    blanks += std::string(display_width(part), ' ');
    text.remove_prefix(part.size());
    if (!text.empty()) {
      blanks += '\t';
      text.remove_prefix(1);
    }
  }
  return blanks;
}

/// Prints the text around the fault in its line, with a mark under its column.
void print_excerpt(const Located_Fault& located) {
  const bool line_is_known = located.document != nullptr || !located.line.empty();
  if (!line_is_known || located.fault.location.column == 0) {
    return;
  }
  const auto [before, after] = surroundings_of(located);
  const std::string shown_before = shown_end(before);
  std::cout << "    " << shown_before << shown_beginning(after) << '\n'
            << "    " << blanks_like(shown_before) << in_red("^") << '\n';
}

void print_note(const Located_Fault& located) {
  if (located.first) {
    std::cout << location_of(located.path, located.role, *located.first)
              << ": note: The id is first given here.\n";
  }
}

void print_message(const Located_Fault& located) {
  std::cout << location_of(located.path, located.role, located.fault.location) << ": "
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
  print_note(located);
}

void print_for_people(const Fault_List& faults) {
  const std::size_t shown = std::min(faults.count, most_messages);
  for (std::size_t number = 0; number < shown; ++number) {
    const Located_Fault located = faults.at(number);
    print_message(located);
    if (number < most_excerpts) {
      print_excerpt(located);
    }
    print_note(located);
  }
  if (shown < faults.count) {
    const std::size_t more = faults.count - shown;
    const std::string what = faults.at(shown).warning.empty() ? "error" : "warning";
    std::cout << fmt::format("{} more {}; use --json to see all.\n", more,
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
