#pragma once

#include <functional>
#include <string>

#include "tools/vemora-triggers/invocation/exit_status.h"
#include "tools/vemora-triggers/invocation/options.h"

namespace CLI {
class App;
class ParseError;
}  // namespace CLI

namespace kuv::vemora::tools {

/// What the command line said.
struct Invocation {
  Options options;
  std::string log_level = "off";
  std::string inventory_path;
  std::string config_path;
  std::string mapping_path;
  std::string what;
  std::string file;
  std::function<Exit_Status()> command;
  bool runs_pass = false;  ///< the command, which decides on the form of its outcome
};

/// Makes `app` understand the command line, and leave what it said in `call`, which must live as
/// long.
void describe_command_line(CLI::App& app, Invocation& call);

/// What to say of a command line that was not understood.
std::string complaint_of(const CLI::App& app, const CLI::ParseError& error);

}  // namespace kuv::vemora::tools
