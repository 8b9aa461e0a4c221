// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "tools/vemora-triggers/command_line.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>
#include <cstdint>
#include <system_error>
#include <utility>
#include <vector>

#include "tools/vemora-triggers/commands/commands.h"
#include "vemora/operations/warnings/nearest_name.h"
#include "vemora/trigger_manager/version.h"

namespace kuv::vemora::tools {
namespace {

constexpr const char* footer =
    "Exit status: 0 done; 1 done, but single triggers had errors; 2 a document was rejected and\n"
    "nothing changed; 3 the pass or the database failed, or the output could not be written;\n"
    "4 refused, because most of what is stored would be deleted or the site is not that of the\n"
    "plan, and nothing changed; 5 only with --exit-code of plan and diff: there is something to\n"
    "change, or a difference; 64 wrong usage.";

/// Stricter than CLI11, which accepts signs, other bases, and numbers that do not fit.
std::string decimal_id(const std::string& text) {
  std::uint64_t id = 0;
  const char* const end = text.data() + text.size();
  const auto [read, fault] = std::from_chars(text.data(), end, id);
  const bool leading_zero = text.size() > 1 && text.front() == '0';
  return fault == std::errc() && read == end && !leading_zero
             ? std::string()
             : text + " is not an unsigned 64-bit number";
}

/// An empty path is most likely a shell variable that was not set.
std::string non_empty(const std::string& text) {
  return text.empty() ? "a path must not be empty" : std::string();
}

CLI::Validator a_path() {
  return CLI::Validator(non_empty, "");
}

CLI::Validator one_of(std::vector<std::string> words) {
  return CLI::Validator(
      [words = std::move(words)](const std::string& text) {
        const bool known = std::find(words.begin(), words.end(), text) != words.end();
        return known ? std::string()
                     : fmt::format("{} is not one of {}", text, fmt::join(words, ", "));
      },
      "");
}

void add_global_options(CLI::App& app, Invocation& call) {
  app.require_subcommand(1);
  app.fallthrough();
  app.footer(footer);
  app.get_formatter()->label("SUBCOMMAND", "COMMAND");
  app.set_version_flag("--version", std::string("vemora-triggers " VEMORA_VERSION_STRING));
  app.add_option("--database", call.options.database,
                 "The database: an SQLite file, or postgresql://USER@HOST/NAME?schema=SCHEMA")
      ->capture_default_str()
      ->envname("VEMORA_DATABASE")
      ->type_name("FILE")
      ->check(a_path());
  app.add_option("--server-id", call.options.server_id,
                 "The id of the server that the database belongs to")
      ->capture_default_str()
      ->type_name("ID")
      ->check(CLI::Validator(decimal_id, ""));
  app.add_flag("--json", call.options.json, "Print the outcome as one JSON document");
  app.add_option("--max-values", call.options.max_values,
                 "The maximum number of values in a document; each takes about 100 bytes of memory")
      ->capture_default_str()
      ->type_name("N")
      ->check(CLI::Validator(decimal_id, ""));
  app.add_option(
         "--log-level", call.log_level,
         "The lowest level that is logged to standard error: trace, debug, detail, info, warning, "
         "error, fatal; off logs nothing")
      ->capture_default_str()
      ->type_name("LEVEL")
      ->check(one_of({"off", "trace", "debug", "detail", "info", "warning", "error", "fatal"}));
}

void require_different_sources(const Invocation& call) {
  if (call.config_path == "-" && call.mapping_path == "-") {
    throw CLI::ValidationError("MAPPING", "CONFIG and MAPPING cannot both be standard input");
  }
}

/// An argument that is the path of a file.
void add_path(CLI::App& command, const char* name, std::string& path, const char* meaning) {
  command.add_option(name, path, meaning)->required()->type_name(" ")->check(a_path());
}

void add_documents(CLI::App& command, Invocation& call) {
  add_path(command, "CONFIG", call.config_path,
           "The trigger configuration; - reads standard input");
  command
      .add_option("MAPPING", call.mapping_path,
                  "The trigger mapping; - reads standard input; default: the stored mapping")
      ->type_name(" ")
      ->check(a_path());
}

void add_strict(CLI::App& command, Invocation& call) {
  command.add_flag("--strict", call.options.strict, "Reject documents that have warnings");
}

void add_guard(CLI::App& command, Invocation& call) {
  command.add_flag("--allow-mass-deletion", call.options.allow_mass_deletion,
                   "Let the pass delete ten or more triggers or topic subscriptions even if they "
                   "are more than half of those stored");
}

void add_note(CLI::App& command, Invocation& call) {
  command.add_option("--note", call.options.note, "What the history says about the pass")
      ->type_name("TEXT");
}

void add_copies(CLI::App& app, Invocation& call) {
  CLI::App* const copied = app.add_subcommand("backup", "Copy the site into one file");
  add_path(*copied, "FILE", call.file, "The backup; an existing one is replaced");
  copied->callback([&call] { call.command = [&call] { return backup(call.options, call.file); }; });

  CLI::App* const restored =
      app.add_subcommand("restore", "Replace the site with that of a backup");
  add_path(*restored, "FILE", call.file, "The backup");
  restored->callback(
      [&call] { call.command = [&call] { return restore(call.options, call.file); }; });
}

CLI::Option* add_id(CLI::App& command, const char* name, std::optional<std::uint64_t>& id,
                    const char* meaning) {
  return command.add_option(name, id, meaning)
      ->type_name("ID")
      ->check(CLI::Validator(decimal_id, ""));
}

/// Throws where the options are not those of one event, or of a file of many.
void require_one_question(const Invocation& call) {
  const Asked_Event& asked = call.event;
  const auto complain = [](const char* text) { throw CLI::ValidationError("match", text); };
  const int kinds =
      int(asked.topic.has_value()) + int(asked.object.has_value()) + int(asked.motion);
  if (int(call.camera_id.has_value()) + int(asked.subscription_id.has_value()) +
          int(asked.events.has_value()) !=
      1) {
    complain("one of --camera, --subscription and --events is required");
  }
  if (call.camera_id && kinds != 1) {
    complain("--camera needs one of --topic, --object and --motion");
  }
  if (!call.camera_id && kinds != 0) {
    complain("--topic, --object and --motion need --camera");
  }
  if (asked.in_motion && !asked.object) {
    complain("--in-motion needs --object");
  }
  if (!asked.against.empty() && !asked.events) {
    complain("--against needs --events");
  }
  if (int(asked.events == "-") + std::count(asked.against.begin(), asked.against.end(), "-") > 1) {
    complain("only one input can be -");
  }
}

operations::Event event_of(const Invocation& call) {
  using Kind = operations::Event::Kind;
  const Asked_Event& asked = call.event;
  if (asked.subscription_id) {
    return {Kind::subscription, *asked.subscription_id, {}, false};
  }
  if (asked.topic) {
    return {Kind::topic, *call.camera_id, *asked.topic, false};
  }
  if (asked.object) {
    return {Kind::object, *call.camera_id, *asked.object, asked.in_motion};
  }
  return {Kind::motion, *call.camera_id, {}, false};
}

Exit_Status match(const Invocation& call) {
  const Asked_Event& asked = call.event;
  if (!asked.events) {
    return match(call.options, event_of(call));
  }
  if (asked.against.empty()) {
    return match_events(call.options, *asked.events);
  }
  return match_against(call.options, *asked.events, asked.against.front(),
                       asked.against.size() > 1 ? asked.against.back() : std::string());
}

void add_match(CLI::App& app, Invocation& call) {
  CLI::App* const matched = app.add_subcommand(
      "match", "Find the triggers that are told of an event, or of many; writes nothing");
  Asked_Event& asked = call.event;
  add_id(*matched, "--camera", call.camera_id,
         "An event of this camera: a topic, object or motion");
  matched->add_option("--topic", asked.topic, "The ONVIF topic")->type_name("TOPIC");
  matched->add_option("--object", asked.object, "The type of the object")->type_name("TYPE");
  matched->add_flag("--in-motion", asked.in_motion, "The object is in motion");
  matched->add_flag("--motion", asked.motion, "Motion, of whatever");
  add_id(*matched, "--subscription", asked.subscription_id,
         "An event of this generic subscription");
  matched
      ->add_option("--events", asked.events,
                   "Count the events of a file, one JSON object a line; - reads standard input")
      ->type_name("FILE")
      ->check(a_path());
  matched
      ->add_option("--against", asked.against,
                   "Compare with other documents: CONFIG [MAPPING], read as by apply")
      ->type_name("FILES")
      ->expected(1, 2)
      ->check(a_path());
  matched->callback([&call] {
    require_one_question(call);
    call.command = [&call] { return match(call); };
  });
}

void add_questions(CLI::App& app, Invocation& call) {
  CLI::App* const explained = app.add_subcommand(
      "explain", "Explain why a trigger is or is not active, and where it listens; writes nothing");
  explained->add_option("TRIGGER_ID", call.trigger_id, "The trigger")
      ->required()
      ->type_name(" ")
      ->check(CLI::Validator(decimal_id, ""));
  add_id(*explained, "--camera", call.camera_id, "Only at this camera");
  explained->callback([&call] {
    call.command = [&call] { return explain(call.options, call.trigger_id, call.camera_id); };
  });
  add_match(app, call);
}

void add_plan(CLI::App& app, Invocation& call) {
  CLI::App* const planned =
      app.add_subcommand("plan", "Show what apply would change, record by record; writes nothing");
  add_documents(*planned, call);
  add_strict(*planned, call);
  planned
      ->add_option("--out", call.planned.out,
                   "Keep the plan in this file, for apply --plan; only its owner can read it")
      ->type_name("PLAN")
      ->check(a_path());
  planned->add_flag("--exit-code", call.planned.tells_changes,
                    "Exit with 5 if there is something to change");
  planned->callback([&call] {
    require_different_sources(call);
    call.runs_pass = true;
    call.planned.config_path = call.config_path;
    call.planned.mapping_path = call.mapping_path;
    call.command = [&call] { return plan(call.options, call.planned); };
  });
}

/// Documents, or a plan that has them.
void require_documents(const CLI::App& applied, const Invocation& call) {
  const bool has_documents = applied.count("CONFIG") != 0;
  if (!call.plan_path.empty() && has_documents) {
    throw CLI::ValidationError("--plan", "the plan has its documents; CONFIG cannot be given too");
  }
  if (call.plan_path.empty() && !has_documents) {
    throw CLI::RequiredError("CONFIG");
  }
}

void add_apply(CLI::App& app, Invocation& call) {
  CLI::App* const applied =
      app.add_subcommand("apply", "Run a pass on a configuration and a mapping, and store them");
  add_documents(*applied, call);
  applied->get_option("CONFIG")->required(false);
  add_strict(*applied, call);
  add_guard(*applied, call);
  add_note(*applied, call);
  applied
      ->add_option("--plan", call.plan_path,
                   "Apply the documents of a plan, instead of CONFIG and MAPPING; refused if the "
                   "site has changed since")
      ->type_name("PLAN")
      ->check(a_path());
  applied->callback([applied, &call] {
    require_documents(*applied, call);
    require_different_sources(call);
    call.runs_pass = true;
    call.command = [&call] {
      return call.plan_path.empty() ? apply(call.options, call.config_path, call.mapping_path)
                                    : apply_plan(call.options, call.plan_path);
    };
  });
}

/// An argument that is the number of a pass.
template <class Number>
CLI::Option* add_pass(CLI::App& command, const char* name, Number& pass, const char* meaning) {
  return command.add_option(name, pass, meaning)
      ->type_name(" ")
      ->check(CLI::Validator(decimal_id, ""));
}

void add_rollback(CLI::App& app, Invocation& call) {
  CLI::App* const rolled_back = app.add_subcommand(
      "rollback", "Apply the documents that were stored when an earlier pass was over");
  add_pass(*rolled_back, "PASS", call.pass, "The number of the pass, see history")->required();
  add_strict(*rolled_back, call);
  add_guard(*rolled_back, call);
  add_note(*rolled_back, call);
  rolled_back->callback([&call] {
    call.runs_pass = true;
    call.command = [&call] { return rollback(call.options, *call.pass); };
  });
}

void add_history(CLI::App& app, Invocation& call) {
  CLI::App* const listed = app.add_subcommand(
      "history", "List the passes that changed something, the newest first, or show one of them");
  add_pass(*listed, "PASS", call.pass, "The number of one pass; default: list all");
  listed->callback([&call] {
    call.command = [&call] {
      return call.pass ? history_of_pass(call.options, *call.pass) : history(call.options);
    };
  });

  CLI::App* const compared = app.add_subcommand(
      "diff", "Compare the documents of two passes, or of a pass and what is stored");
  add_pass(*compared, "A", call.compared.before, "The number of a pass, see history")->required();
  add_pass(*compared, "B", call.compared.after,
           "The number of another pass; default: the stored documents");
  compared->add_flag("--exit-code", call.compared.tells_difference,
                     "Exit with 5 if the documents differ in what they say");
  compared->callback(
      [&call] { call.command = [&call] { return diff(call.options, call.compared); }; });
}

void add_show(CLI::App& app, Invocation& call) {
  CLI::App* const shown = app.add_subcommand("show", "Show what is stored");
  shown->add_option("WHAT", call.shown.what, fmt::format("{}", fmt::join(things_to_show(), ", ")))
      ->required()
      ->type_name(" ")
      ->check(one_of(things_to_show()));
  shown->add_option("--camera", call.shown.camera_id, "Only what belongs to this camera")
      ->type_name("ID")
      ->check(CLI::Validator(decimal_id, ""));
  shown->add_option("--trigger", call.shown.trigger_id, "Only what belongs to this trigger")
      ->type_name("ID")
      ->check(CLI::Validator(decimal_id, ""));
  shown->add_option("--topic", call.shown.topic, "Only what has this ONVIF topic")
      ->type_name("TOPIC");
  shown->add_option("--sort", call.shown.sort, "Sort by this column (default: by id)")
      ->type_name("COLUMN");
  shown->callback([&call] { call.command = [&call] { return show(call.options, call.shown); }; });
}

void add_init(CLI::App& app, Invocation& call) {
  CLI::App* const site = app.add_subcommand(
      "init", "Create or update the site: servers, cameras, schedules, subscriptions");
  add_path(*site, "INVENTORY", call.inventory_path, "The inventory; - reads standard input");
  site->add_flag("--prune", call.prunes,
                 "Remove what the inventory does not name, because it is the whole site");
  site->add_flag("--allow-mass-deletion", call.options.allow_mass_deletion,
                 "Let --prune remove ten or more records of a kind even if they are more than half "
                 "of those stored");
  site->callback([&call] {
    if (call.options.allow_mass_deletion && !call.prunes) {
      throw CLI::ValidationError("--allow-mass-deletion", "it needs --prune");
    }
    call.command = [&call] { return init(call.options, call.inventory_path, call.prunes); };
  });
}

void add_commands(CLI::App& app, Invocation& call) {
  add_init(app, call);

  CLI::App* const checked =
      app.add_subcommand("check", "Validate a configuration and a mapping; writes nothing");
  add_documents(*checked, call);
  add_strict(*checked, call);
  checked->callback([&call] {
    require_different_sources(call);
    call.command = [&call] { return check(call.options, call.config_path, call.mapping_path); };
  });

  add_plan(app, call);
  add_apply(app, call);

  CLI::App* const refreshed = app.add_subcommand("refresh", "Run a pass on the stored documents");
  add_strict(*refreshed, call);
  add_guard(*refreshed, call);
  add_note(*refreshed, call);
  refreshed->callback([&call] {
    call.runs_pass = true;
    call.command = [&call] { return refresh(call.options); };
  });

  add_show(app, call);
  add_questions(app, call);
  add_history(app, call);
  add_rollback(app, call);
  add_copies(app, call);

  for (CLI::App* const command : app.get_subcommands([](const CLI::App*) { return true; })) {
    command->group("Commands");
  }
}

}  // namespace

void describe_command_line(CLI::App& app, Invocation& call) {
  add_global_options(app, call);
  add_commands(app, call);
}

namespace {

/// The command that the line names, or the whole program.
const CLI::App& innermost(const CLI::App& app) {
  const std::vector<CLI::App*> commands = app.get_subcommands();
  return commands.empty() ? app : *commands.front();
}

/// "; did you mean --database?" if a word on the line is like an option that exists.
std::string option_meant(const CLI::App& app, const std::vector<std::string>& words) {
  for (const std::string& word : words) {
    const std::string name = word.substr(0, word.find('='));
    operations::Nearest_Name nearest(name);
    std::vector<std::string> known;
    for (const CLI::App* const place : {&app, &innermost(app)}) {
      for (const CLI::Option* const option : place->get_options()) {
        for (const std::string& long_name : option->get_lnames()) {
          known.push_back("--" + long_name);
        }
      }
    }
    const bool is_option = name.substr(0, 2) == "--";
    std::for_each(known.begin(), known.end(), [&](const auto& option) { nearest.offer(option); });
    if (is_option && !nearest.found().empty()) {
      return fmt::format("; did you mean {}?", nearest.found());
    }
  }
  return {};
}

std::string command_meant(const CLI::App& app, const std::string& word) {
  operations::Nearest_Name nearest(word);
  const auto commands = app.get_subcommands([](const CLI::App*) { return true; });
  for (const CLI::App* const command : commands) {
    nearest.offer(command->get_name());
  }
  return nearest.found().empty() ? "" : fmt::format("; did you mean {}?", nearest.found());
}

}  // namespace

std::string complaint_of(const CLI::App& app, const CLI::ParseError& error) {
  const bool is_unexpected = dynamic_cast<const CLI::ExtrasError*>(&error) != nullptr;
  const std::string meant = is_unexpected ? option_meant(app, app.remaining(true)) : "";
  if (!app.get_subcommands().empty() || !meant.empty()) {
    return error.what() + meant;
  }
  // CLI11 reports a misspelled command as a missing one, and calls it a subcommand.
  const std::vector<std::string> unknown = app.remaining();
  if (!unknown.empty()) {
    return "Unknown command or option: " + unknown.front() + command_meant(app, unknown.front());
  }
  const bool lacks_command = dynamic_cast<const CLI::RequiredError*>(&error) != nullptr;
  return lacks_command ? "A command is required" : error.what();
}

}  // namespace kuv::vemora::tools
