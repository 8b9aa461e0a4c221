// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <json/value.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "tools/vemora-triggers/invocation/options.h"
#include "vemora/embedded_server/documents/json_document.h"

namespace kuv::vemora::tools {

/// A fault of a document, and its file.
struct Located_Fault {
  std::string role;  ///< "inventory", "config" or "mapping"
  std::string path;  ///< empty for a stored document
  embedded_server::Document_Fault fault;
  const embedded_server::Json_Document* document = nullptr;  ///< null if not available
  std::string line;  ///< without a document, the line of the fault if it is known
  std::optional<std::size_t> index;
  std::optional<std::uint64_t> id;
  std::optional<embedded_server::Location> first =
      {};                    ///< of an id that was given before: where that was
  std::string warning = {};  ///< the code of a warning; empty for an error
};

/// Faults, or warnings, each made when it is printed: there may be a million.
struct Fault_List {
  std::size_t count = 0;
  std::function<Located_Fault(std::size_t)> at;
};

Json::Value to_json(const Located_Fault& located);

/// The text of an array. Texts, and not values of the JSON library: those take many times the room.
std::string to_json_text(const Fault_List& faults);

/// Prints a fault with its location and its line.
void print_for_people(const Located_Fault& located);

/// The first ones, of the very first ones the line, and how many more there are.
void print_for_people(const Fault_List& faults);

/// Prints why documents are rejected: as JSON, all faults; for people, the first ones and the
/// number of the others.
void print_faults(const Options& options, const Fault_List& faults);
void print_faults(const Options& options, const std::vector<Located_Fault>& faults);

/// Prints the result of a check: faults as above, warnings, and a line if there is no fault.
void print_check(const Options& options, const Fault_List& faults, const Fault_List& warnings);

/// Prints why a command line could not be parsed.
void print_wrong_usage(bool json, const std::string& message);

/// Prints why a command failed and, unless `stored` is empty, what is stored.
void print_failure(const Options& options, const std::string& message, const std::string& stored);

}  // namespace kuv::vemora::tools
