#include <CLI/CLI.hpp>
#include <algorithm>
#include <csignal>
#include <exception>
#include <initializer_list>
#include <iostream>
#include <string_view>

#include "tools/command_line.h"
#include "tools/commands/input.h"
#include "tools/render/faults.h"
#include "tools/standard_streams.h"
#include "vemora/embedded_server/host/process_heap.h"
#include "vemora/embedded_server/logging/console.h"

namespace kuv::vemora::tools {
namespace {

Exit_Status run(const Invocation& call) {
  try {
    kuv::logging::log_to(std::cerr, kuv::logging::parse_severity(call.log_level));
    return call.command();
  } catch (const Unreadable_Document& unreadable) {
    print_faults(call.options, {unreadable.located()});
    return exit_rejected;
  } catch (const std::exception& error) {
    print_failure(call.options, error.what());
    return exit_failed;
  }
}

/// Whether a program is to read the outcome, of a command line that could not be understood too.
bool wants_json(int count, char** arguments) {
  return std::any_of(arguments, arguments + count,
                     [](const char* argument) { return std::string_view(argument) == "--json"; });
}

/// An outcome that nobody could read is none.
int finish(Exit_Status status) {
  std::cout.flush();
  if (!std::cout) {
    std::cerr << "vemora-triggers: cannot write the outcome to standard output\n";
    return exit_failed;
  }
  return status;
}

}  // namespace
}  // namespace kuv::vemora::tools

int main(int count, char** arguments) {
  using namespace kuv::vemora::tools;
  occupy_missing_standard_streams();
  kuv::vemora::embedded_server::suit_heap_to_passes();
  for (const int signal : {SIGPIPE, SIGXFSZ}) {
    std::signal(signal, SIG_IGN);  // writing that fails is told of like any other fault
  }
  CLI::App app("Runs the triggers of a video-management server on a database of its own.",
               "vemora-triggers");
  Invocation call;
  describe_command_line(app, call);
  try {
    app.parse(count, arguments);
  } catch (const CLI::ParseError& error) {
    if (error.get_exit_code() == 0) {  // --help, --version
      app.exit(error, std::cout, std::cerr);
      return finish(exit_done);
    }
    print_wrong_usage(wants_json(count, arguments), complaint_of(app, error));
    return finish(exit_usage);
  }
  return finish(run(call));
}
