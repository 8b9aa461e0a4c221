// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include <CLI/CLI.hpp>
#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <initializer_list>
#include <iostream>
#include <new>
#include <string_view>

#include "tools/vemora-triggers/command_line.h"
#include "tools/vemora-triggers/commands/input.h"
#include "tools/vemora-triggers/heap/heap.h"
#include "tools/vemora-triggers/process/outcome_output.h"
#include "tools/vemora-triggers/process/standard_streams.h"
#include "tools/vemora-triggers/process/stored_note.h"
#include "tools/vemora-triggers/render/faults.h"
#include "tools/vemora-triggers/render/out_of_memory.h"
#include "tools/vemora-triggers/render/pass.h"
#include "tools/vemora-triggers/render/terminal.h"
#include "vemora/embedded_server/logging/console.h"
#include "vemora/embedded_server/persistent/long_wait.h"

namespace kuv::vemora::tools {
namespace {

/// The arguments of the process, for messages that are printed before they are parsed.
class Arguments {
 public:
  Arguments(int count, char** texts) : count_(count), texts_(texts) {}

  int count() const { return count_; }
  char** texts() const { return texts_; }

  bool contain(std::string_view wanted) const noexcept {
    return std::any_of(texts_, texts_ + count_,
                       [&](const char* text) { return std::string_view(text) == wanted; });
  }

 private:
  int count_;
  char** texts_;
};

/// Replaces what the command has printed, which may be half an outcome.
void print_failed_command(const Invocation& call, Outcome_Output& output, const char* reason) {
  output.discard();
  if (call.runs_pass) {
    print_failed_pass(call.options, reason, stored_note());
  } else {
    print_failure(call.options, reason, stored_note());
  }
}

Exit_Status run(const Invocation& call, Outcome_Output& output) {
  try {
    kuv::logging::log_to(std::cerr, kuv::logging::parse_severity(call.log_level));
    return call.command();
  } catch (const Unreadable_Document& unreadable) {
    print_faults(call.options, {unreadable.located()});
    return exit_rejected;
  } catch (const std::bad_alloc&) {
    throw;
  } catch (const std::exception& error) {
    print_failed_command(call, output, error.what());
    return exit_failed;
  }
}

void report_out_of_memory(const Arguments& arguments) noexcept {
  print_out_of_memory(arguments.contain("--json"),
                      arguments.contain("apply") || arguments.contain("refresh") ||
                          arguments.contain("plan") || arguments.contain("rollback"),
                      stored_note());
}

/// CLI11 copies names in noexcept functions, so the program would be aborted if memory runs out
/// there. While this exists, it reports that instead; nothing has been done at that time.
class Parsing_Guard {
 public:
  explicit Parsing_Guard(const Arguments& arguments) : before_(std::set_terminate(&give_up)) {
    arguments_ = &arguments;
  }
  ~Parsing_Guard() { std::set_terminate(before_); }
  Parsing_Guard(const Parsing_Guard&) = delete;
  Parsing_Guard& operator=(const Parsing_Guard&) = delete;

 private:
  [[noreturn]] static void give_up() {
    try {
      std::rethrow_exception(std::current_exception());
    } catch (const std::bad_alloc&) {
      report_out_of_memory(*arguments_);
      std::_Exit(exit_failed);
    } catch (...) {
      std::abort();
    }
  }

  static inline const Arguments* arguments_ = nullptr;
  std::terminate_handler before_;
};

void parse(CLI::App& app, const Arguments& arguments) {
  const Parsing_Guard guard(arguments);
  app.parse(arguments.count(), arguments.texts());
}

Exit_Status parse_and_run(const Arguments& arguments, Outcome_Output& output) {
  CLI::App app("Runs the triggers of a video-management server on a database of its own.",
               "vemora-triggers");
  Invocation call;
  describe_command_line(app, call);
  try {
    parse(app, arguments);
  } catch (const CLI::ParseError& error) {
    if (error.get_exit_code() == 0) {  // --help, --version
      app.exit(error, std::cout, std::cerr);
      return exit_done;
    }
    print_wrong_usage(arguments.contain("--json"), complaint_of(app, error));
    return exit_usage;
  }
  return run(call, output);
}

/// Called if memory ran out, for the outcome or for another message.
Exit_Status give_up(const Arguments& arguments, Outcome_Output& output) noexcept {
  output.discard();
  report_out_of_memory(arguments);
  return exit_failed;
}

/// An outcome that cannot be written is a failure.
Exit_Status deliver(Outcome_Output& output, Exit_Status status) noexcept {
  const int fault = output.deliver();
  if (fault == 0) {
    return status;
  }
  std::cerr << "vemora-triggers: cannot write the outcome to standard output: "
            << strerrordesc_np(fault) << '\n';  // no memory is needed for this text
  if (*stored_note() != '\0') {
    std::cerr << "note: " << stored_note() << '\n';
  }
  return exit_failed;
}

Exit_Status run(const Arguments& arguments) noexcept {
  Outcome_Output output;
  try {
    const Exit_Status status = parse_and_run(arguments, output);
    return deliver(output, status);
  } catch (const std::exception&) {
    return give_up(arguments, output);
  }
}

}  // namespace
}  // namespace kuv::vemora::tools

int main(int count, char** arguments) {
  using namespace kuv::vemora::tools;
  occupy_missing_standard_streams();
  kuv::vemora::embedded_server::on_long_wait(&tell_of_wait);
  set_up_heap();
  for (const int signal : {SIGPIPE, SIGXFSZ}) {
    std::signal(signal, SIG_IGN);  // a failing write is reported like any other failure
  }
  return run(Arguments(count, arguments));
}
