// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "tools/vemora-triggers/commands/commands.h"
#include "tools/vemora-triggers/invocation/diff_request.h"
#include "tools/vemora-triggers/invocation/exit_status.h"
#include "tools/vemora-triggers/invocation/options.h"
#include "tools/vemora-triggers/invocation/show_request.h"

namespace CLI {
class App;
class ParseError;
}  // namespace CLI

namespace kuv::vemora::tools {

/// The event that `match` is asked about, or the file of many.
struct Asked_Event {
  std::optional<std::string> topic;
  std::optional<std::string> object;
  bool in_motion = false;
  bool motion = false;
  std::optional<std::uint64_t> subscription_id;
  std::optional<std::string> events;
  std::vector<std::string> against;  ///< a configuration, and perhaps a mapping
};

/// The parsed command line.
struct Invocation {
  Options options;
  std::string log_level = "off";
  std::string inventory_path;
  bool prunes = false;
  std::string config_path;
  std::string mapping_path;
  Show_Request shown;
  std::string file;
  std::uint64_t trigger_id = 0;
  std::optional<std::uint64_t> camera_id;
  Asked_Event event;
  Plan_Request planned;
  std::string plan_path;
  std::optional<std::uint64_t> pass;
  Diff_Request compared;
  std::function<Exit_Status()> command;
  bool runs_pass = false;  ///< true if the command runs a pass, and prints the outcome of one
};

/// Makes `app` parse the command line into `call`, which must live as long as `app`.
void describe_command_line(CLI::App& app, Invocation& call);

/// The message for a command line that could not be parsed.
std::string complaint_of(const CLI::App& app, const CLI::ParseError& error);

}  // namespace kuv::vemora::tools
