#pragma once

#include <json/value.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/options.h"
#include "vemora/embedded_server/host/document_fault.h"

namespace kuv::vemora::tools {

/// A fault of a document, and the file that it stands in.
struct Located_Fault {
  std::string role;  ///< "inventory", "config" or "mapping"
  std::string path;  ///< empty: the stored one
  embedded_server::Document_Fault fault;
  std::string_view line;  ///< that the fault stands in; empty when it is not known
  std::optional<std::size_t> index;
  std::optional<std::uint64_t> id;
};

Json::Value to_json(const Located_Fault& located);

/// Prints where a fault is, what it is and the line that it stands in.
void print_for_people(const Located_Fault& located);

/// Prints why documents are rejected.
void print_faults(const Options& options, const std::vector<Located_Fault>& faults);

/// Prints why a command line was not understood.
void print_wrong_usage(bool json, const std::string& message);

/// Prints why nothing could be done.
void print_failure(const Options& options, const std::string& message);

}  // namespace kuv::vemora::tools
