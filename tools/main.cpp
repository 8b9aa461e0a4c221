#include <CLI/CLI.hpp>
#include <charconv>
#include <csignal>
#include <cstdint>
#include <exception>
#include <functional>
#include <iostream>
#include <string>
#include <system_error>

#include "tools/commands/commands.h"
#include "tools/commands/input.h"
#include "tools/render/faults.h"
#include "tools/render/terminal.h"
#include "vemora/embedded_server/logging/console.h"
#include "vemora/embedded_server/persistent/database_error.h"

namespace kuv::vemora::tools {
namespace {

constexpr const char* footer =
    "Exit status: 0 done; 1 done, with errors of single triggers; 2 a document was rejected and\n"
    "nothing changed; 3 the pass or the database failed; 64 wrong usage.";

/// What the command line said.
struct Invocation {
  Options options;
  std::string log_level = "off";
  std::string inventory_path;
  std::string config_path;
  std::string mapping_path;
  std::string what;
  std::function<Exit_Status()> command;
};

/// CLI11 takes signs, bases and numbers that do not fit; an id is none of those.
std::string decimal_id(const std::string& text) {
  std::uint64_t id = 0;
  const char* const end = text.data() + text.size();
  const auto [read, fault] = std::from_chars(text.data(), end, id);
  const bool leading_zero = text.size() > 1 && text.front() == '0';
  return fault == std::errc() && read == end && !leading_zero
             ? std::string()
             : text + " is no unsigned 64-bit number";
}

void add_global_options(CLI::App& app, Invocation& call) {
  app.require_subcommand(1);
  app.fallthrough();
  app.footer(footer);
  app.set_version_flag("--version", std::string("vemora-triggers ") + VEMORA_VERSION);
  app.add_option("--database", call.options.database, "The site's database: a file, or sqlite:FILE")
      ->capture_default_str();
  app.add_option("--server-id", call.options.server_id, "The server that this process works for")
      ->capture_default_str()
      ->check(CLI::Validator(decimal_id, "NUMBER"));
  app.add_flag("--json", call.options.json, "Print one JSON document, for programs");
  app.add_option("--log-level", call.log_level,
                 "Log to standard error from this level on: off, trace, debug, detail, info, "
                 "warning, error, fatal")
      ->capture_default_str()
      ->check(
          CLI::IsMember({"off", "trace", "debug", "detail", "info", "warning", "error", "fatal"}));
}

void add_documents(CLI::App& command, Invocation& call) {
  command.add_option("CONFIG", call.config_path, "The trigger configuration; - is standard input")
      ->required();
  command.add_option("MAPPING", call.mapping_path,
                     "The trigger mapping; without it the stored one is used");
}

void add_commands(CLI::App& app, Invocation& call) {
  CLI::App* const site = app.add_subcommand(
      "init", "Create or update the site: servers, cameras, schedules, subscriptions");
  site->add_option("INVENTORY", call.inventory_path, "What there is; - is standard input")
      ->required();
  site->callback(
      [&call] { call.command = [&call] { return init(call.options, call.inventory_path); }; });

  CLI::App* const checked = app.add_subcommand("check", "Validate documents; nothing is written");
  add_documents(*checked, call);
  checked->callback([&call] {
    call.command = [&call] { return check(call.options, call.config_path, call.mapping_path); };
  });

  CLI::App* const applied =
      app.add_subcommand("apply", "Run the pass on new documents and store them");
  add_documents(*applied, call);
  applied->callback([&call] {
    call.command = [&call] { return apply(call.options, call.config_path, call.mapping_path); };
  });

  app.add_subcommand("refresh", "Run the pass on the stored documents")->callback([&call] {
    call.command = [&call] { return refresh(call.options); };
  });

  CLI::App* const shown = app.add_subcommand("show", "Show what is stored");
  shown
      ->add_option("WHAT", call.what,
                   "triggers, subscriptions, detection, cameras, config, mapping")
      ->required()
      ->check(CLI::IsMember(
          {"triggers", "subscriptions", "detection", "cameras", "config", "mapping"}));
  shown->callback([&call] { call.command = [&call] { return show(call.options, call.what); }; });
}

Exit_Status run(const Invocation& call) {
  try {
    kuv::logging::log_to(std::cerr, kuv::logging::parse_severity(call.log_level));
    return call.command();
  } catch (const Unreadable_Document& unreadable) {
    print_faults(call.options, {{unreadable.role, unreadable.path, unreadable.fault,
                                 unreadable.line, std::nullopt, std::nullopt}});
    return exit_rejected;
  } catch (const std::exception& error) {
    print_failure(call.options, error.what());
    return exit_failed;
  }
}

/// An outcome that nobody could read is none.
int finish(Exit_Status status) {
  std::cout.flush();
  if (!std::cout) {
    std::cerr << "vemora-triggers: cannot write to standard output\n";
    return exit_failed;
  }
  return status;
}

}  // namespace
}  // namespace kuv::vemora::tools

int main(int count, char** arguments) {
  using namespace kuv::vemora::tools;
  std::signal(SIGPIPE, SIG_IGN);  // a reader that left is told of like any other fault
  CLI::App app("Runs the triggers of a video-management server on a database of its own.",
               "vemora-triggers");
  Invocation call;
  add_global_options(app, call);
  add_commands(app, call);
  try {
    app.parse(count, arguments);
  } catch (const CLI::ParseError& error) {
    const bool asked_for = error.get_exit_code() == 0;  // --help, --version
    app.exit(error, std::cout, std::cerr);
    return asked_for ? finish(exit_done) : exit_usage;
  }
  return finish(run(call));
}
