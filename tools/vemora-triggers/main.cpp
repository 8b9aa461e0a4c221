#include <CLI/CLI.hpp>
#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <exception>
#include <initializer_list>
#include <iostream>
#include <new>
#include <string_view>

#include "tools/vemora-triggers/command_line.h"
#include "tools/vemora-triggers/commands/input.h"
#include "tools/vemora-triggers/process/outcome_output.h"
#include "tools/vemora-triggers/process/standard_streams.h"
#include "tools/vemora-triggers/process/stored_note.h"
#include "tools/vemora-triggers/render/faults.h"
#include "tools/vemora-triggers/render/out_of_memory.h"
#include "tools/vemora-triggers/render/pass.h"
#include "vemora/embedded_server/host/process_heap.h"
#include "vemora/embedded_server/logging/console.h"

namespace kuv::vemora::tools {
namespace {

/// The arguments as they were given, for what is told before they are understood, or cannot be.
class Arguments {
 public:
  Arguments(int count, char** texts) : count_(count), texts_(texts) {}

  int count() const { return count_; }
  char** texts() const { return texts_; }

  bool hold(std::string_view wanted) const noexcept {
    return std::any_of(texts_, texts_ + count_,
                       [&](const char* text) { return std::string_view(text) == wanted; });
  }

 private:
  int count_;
  char** texts_;
};

/// Half an outcome that was printed before is none.
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

void tell_out_of_memory(const Arguments& arguments) noexcept {
  print_out_of_memory(arguments.hold("--json"),
                      arguments.hold("apply") || arguments.hold("refresh"), stored_note());
}

/// CLI11 copies names in functions that promise not to throw: where there is no memory for that,
/// the program would be aborted. As long as this lives, nothing has been done yet, and that is
/// said.
class Understanding {
 public:
  explicit Understanding(const Arguments& arguments) : before_(std::set_terminate(&give_up)) {
    arguments_ = &arguments;
  }
  ~Understanding() { std::set_terminate(before_); }
  Understanding(const Understanding&) = delete;
  Understanding& operator=(const Understanding&) = delete;

 private:
  [[noreturn]] static void give_up() {
    try {
      std::rethrow_exception(std::current_exception());
    } catch (const std::bad_alloc&) {
      tell_out_of_memory(*arguments_);
      std::_Exit(exit_failed);
    } catch (...) {
      std::abort();
    }
  }

  static inline const Arguments* arguments_ = nullptr;
  std::terminate_handler before_;
};

void understand(CLI::App& app, const Arguments& arguments) {
  const Understanding in_progress(arguments);
  app.parse(arguments.count(), arguments.texts());
}

Exit_Status understand_and_run(const Arguments& arguments, Outcome_Output& output) {
  CLI::App app("Runs the triggers of a video-management server on a database of its own.",
               "vemora-triggers");
  Invocation call;
  describe_command_line(app, call);
  try {
    understand(app, arguments);
  } catch (const CLI::ParseError& error) {
    if (error.get_exit_code() == 0) {  // --help, --version
      app.exit(error, std::cout, std::cerr);
      return exit_done;
    }
    print_wrong_usage(arguments.hold("--json"), complaint_of(app, error));
    return exit_usage;
  }
  return run(call, output);
}

/// There is no memory, or none for saying what else is wrong.
Exit_Status give_up(const Arguments& arguments, Outcome_Output& output) noexcept {
  output.discard();
  tell_out_of_memory(arguments);
  return exit_failed;
}

/// An outcome that nobody could read is none.
Exit_Status deliver(Outcome_Output& output, Exit_Status status) noexcept {
  if (output.deliver()) {
    return status;
  }
  std::cerr << "vemora-triggers: cannot write the outcome to standard output\n";
  if (*stored_note() != '\0') {
    std::cerr << "note: " << stored_note() << '\n';
  }
  return exit_failed;
}

Exit_Status run(const Arguments& arguments) noexcept {
  Outcome_Output output;
  try {
    const Exit_Status status = understand_and_run(arguments, output);
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
  kuv::vemora::embedded_server::suit_heap_to_passes();
  for (const int signal : {SIGPIPE, SIGXFSZ}) {
    std::signal(signal, SIG_IGN);  // writing that fails is told of like any other fault
  }
  return run(Arguments(count, arguments));
}
