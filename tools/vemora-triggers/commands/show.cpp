// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <iostream>
#include <limits>
#include <optional>
#include <set>
#include <vector>

#include "tools/vemora-triggers/commands/commands.h"
#include "tools/vemora-triggers/render/faults.h"
#include "tools/vemora-triggers/render/json.h"
#include "tools/vemora-triggers/render/records.h"
#include "tools/vemora-triggers/render/site_lists.h"
#include "tools/vemora-triggers/render/terminal.h"
#include "vemora/embedded_server/host/stored_document.h"
#include "vemora/embedded_server/persistent/database_error.h"
#include "vemora/embedded_server/persistent/pass_scope.h"
#include "vemora/embedded_server/persistent/site_reader.h"
#include "vemora/embedded_server/persistent/stored_inventory.h"
#include "vemora/embedded_server/texts/printable.h"
#include "vemora/operations/explain/inactive_triggers.h"
#include "vemora/platform/records/supported_topics.h"

namespace kuv::vemora::tools {
namespace {

using embedded_server::Database;
using Subscription = metadata_event_subscription;
using Ids = std::set<std::uint64_t>;

constexpr std::size_t most_inactive = 1000;

/// What can be shown, its columns, and what it can be asked for.
struct Kind {
  const char* what;
  std::vector<std::string> columns;
  bool by_camera = false;
  bool by_trigger = false;
  bool by_topic = false;
};

const std::vector<Kind>& kinds() {
  static const std::vector<Kind> all{
      {"triggers", {"id", "name", "schedules", "sources"}, true, true, true},
      {"subscriptions", {"id", "camera", "topic", "tags", "triggers"}, true, true, true},
      {"detection", {"id", "camera", "objects", "triggers"}, true, true, false},
      {"cameras", {"id", "name", "tags", "detects", "topics"}, true, true, true},
      {"schedules", {"id", "name", "usable"}, false, true, false},
      {"servers", {"id", "name", "tags"}},
      {"object-types", {"name", "stands-for"}},
      {"inventory", {}},
      {"config", {}},
      {"mapping", {}}};
  return all;
}

const Kind& kind_of(const Show_Request& request) {
  return *std::find_if(kinds().begin(), kinds().end(),
                       [&](const Kind& kind) { return kind.what == request.what; });
}

std::string complaint_of_filter(const char* option, const Kind& kind, bool Kind::*takes) {
  std::vector<std::string> others;
  for (const Kind& other : kinds()) {
    if (other.*takes) {
      others.emplace_back(other.what);
    }
  }
  return fmt::format("{} does not select {}; it selects {}", option, kind.what,
                     fmt::join(others, ", "));
}

/// What makes no sense; empty if all of it does.
std::string what_is_wrong_with(const Show_Request& request, const Kind& kind) {
  if (request.camera_id && !kind.by_camera) {
    return complaint_of_filter("--camera", kind, &Kind::by_camera);
  }
  if (request.trigger_id && !kind.by_trigger) {
    return complaint_of_filter("--trigger", kind, &Kind::by_trigger);
  }
  if (request.topic && !kind.by_topic) {
    return complaint_of_filter("--topic", kind, &Kind::by_topic);
  }
  const bool is_known =
      std::find(kind.columns.begin(), kind.columns.end(), request.sort) != kind.columns.end();
  if (request.sort.empty() || is_known) {
    return {};
  }
  if (kind.columns.empty()) {
    return fmt::format("--sort: {} is a document and has no columns", kind.what);
  }
  return fmt::format("--sort: {} is no column of {}; these are {}", request.sort, kind.what,
                     fmt::join(kind.columns, ", "));
}

/// Thrown for a record that is asked for and not there.
struct Nothing_There {
  std::string message;
};

template <class Records, class Wanted>
void keep(Records& records, Wanted wanted) {
  records.erase(std::remove_if(records.begin(), records.end(),
                               [&](const auto& record) { return !wanted(*record); }),
                records.end());
}

bool holds(const Subscription& record, std::uint64_t trigger_id) {
  const std::vector<std::uint64_t> ids = record.trigger_ids();
  return std::binary_search(ids.begin(), ids.end(), trigger_id);
}

bool holds(const eta_camera& record, std::uint64_t trigger_id) {
  return std::any_of(record.triggers.begin(), record.triggers.end(),
                     [&](const auto& held) { return held->id == trigger_id; });
}

bool is_of(const Subscription& record, std::uint64_t camera_id) {
  return (record.camera && record.camera_id() == camera_id) ||
         std::any_of(record.camera_links.begin(), record.camera_links.end(), [&](const auto& link) {
           const camera* const further = link.get();
           return further != nullptr && further->id == camera_id;
         });
}

bool has_topic(const trigger& record, const std::string& topic) {
  return std::any_of(record.sources.begin(), record.sources.end(),
                     [&](const Trigger_Source& source) { return source.onvif_topic == topic; });
}

/// Shows one state of a site; for each of what can be asked for there is a member function.
class Shown_Site {
 public:
  Shown_Site(const Options& options, const Show_Request& request,
             const std::shared_ptr<Database>& database)
      : options_(options),
        request_(request),
        database_(database),
        state_(database, options.server_id, embedded_server::Pass_Scope::Mode::read_only) {
    const std::vector<std::string>& columns = kind_of(request).columns;
    const auto column = std::find(columns.begin(), columns.end(), request.sort);
    if (column != columns.end()) {
      sort_column_ = static_cast<std::size_t>(column - columns.begin());
    }
  }

  /// True if the trigger that is asked for may still be one without a record.
  bool show_triggers() const {
    Records<trigger> records = embedded_server::read_triggers(database_);
    const bool may_be_inactive = !request_.camera_id && !request_.topic && !options_.json;
    if (!may_be_inactive) {
      require_trigger(records);
    }
    require_camera();
    if (request_.camera_id) {
      const Ids there = triggers_at(*request_.camera_id);
      keep(records, [&](const trigger& record) { return there.count(record.id) != 0; });
    }
    if (request_.trigger_id) {
      keep(records, [&](const trigger& record) { return record.id == *request_.trigger_id; });
    }
    if (request_.topic) {
      keep(records, [&](const trigger& record) { return has_topic(record, *request_.topic); });
    }
    if (!(request_.trigger_id && records.empty() && may_be_inactive)) {
      print_triggers(options_, records, sort_column_);
    }
    return may_be_inactive && !(request_.trigger_id && !records.empty());
  }

  void show_subscriptions() const {
    require_ids();
    Records<Subscription> records = embedded_server::read_subscriptions(database_);
    keep(records, [&](const Subscription& record) {
      return (!request_.camera_id || is_of(record, *request_.camera_id)) &&
             (!request_.trigger_id || holds(record, *request_.trigger_id)) &&
             (!request_.topic || record.onvif_topic == request_.topic);
    });
    print_subscriptions(options_, records, sort_column_);
  }

  void show_detection() const {
    require_ids();
    Records<eta_camera> records = embedded_server::read_eta_cameras(database_);
    keep(records, [&](const eta_camera& record) {
      return (!request_.camera_id || record.camera_id() == *request_.camera_id) &&
             (!request_.trigger_id || holds(record, *request_.trigger_id));
    });
    print_detection(options_, records, sort_column_);
  }

  void show_cameras() const {
    require_ids();
    Records<camera> records = embedded_server::read_cameras(database_);
    const Ids listened_at = request_.trigger_id ? cameras_of(*request_.trigger_id) : Ids();
    keep(records, [&](const camera& record) {
      return (!request_.camera_id || record.id == *request_.camera_id) &&
             (!request_.trigger_id || listened_at.count(record.id) != 0) &&
             (!request_.topic || is_supported(supported_topics(record), *request_.topic));
    });
    print_cameras(options_, records, sort_column_);
    if (!options_.json && request_.camera_id && !records.empty()) {
      Records<Subscription> subscriptions = embedded_server::read_subscriptions(database_);
      keep(subscriptions, [&](const Subscription& record) {
        return record.camera && record.camera_id() == *request_.camera_id;
      });
      print_topics(*records.front(), subscriptions);
    }
  }

  void show_schedules() const {
    std::vector<schedule> records = embedded_server::load_schedules(database_);
    if (request_.trigger_id) {
      Ids listed;
      for (const Trigger_Mapping_Entry& entry : wanted_trigger()->schedules) {
        listed.insert(entry.schedule->id);
      }
      records.erase(
          std::remove_if(records.begin(), records.end(),
                         [&](const schedule& record) { return listed.count(record.id) == 0; }),
          records.end());
    }
    print_schedules(options_, records, sort_column_);
  }

  void show_rest() const {
    if (request_.what == "servers") {
      print_servers(options_, embedded_server::load_servers(database_), sort_column_);
    } else if (request_.what == "object-types") {
      print_object_types(options_, embedded_server::load_object_types(database_), sort_column_);
    } else if (request_.what == "inventory") {
      print_inventory(options_, embedded_server::load_inventory(database_));
    } else if (request_.what == "config") {
      print_document(state_.documents().config, "configuration");
    } else {
      print_document(state_.documents().mapping, "mapping");
    }
  }

 private:
  /// Prints a stored document byte for byte; on a terminal, with control characters as escapes.
  void print_document(const std::optional<std::string>& text, const char* name) const {
    if (text) {
      print_text(*text);
    } else if (options_.json) {
      std::cout << "{}\n";
    } else {
      std::cout << "No " << name << " is stored yet.\n";
    }
  }

  void require_ids() const {
    require_camera();
    require_trigger(request_.trigger_id ? embedded_server::read_triggers(database_)
                                        : Records<trigger>());
  }

  void require_camera() const {
    if (!request_.camera_id) {
      return;
    }
    const Records<camera> records = embedded_server::read_cameras(database_);
    if (std::none_of(records.begin(), records.end(),
                     [&](const auto& record) { return record->id == *request_.camera_id; })) {
      throw Nothing_There{fmt::format("The site has no camera {}.", *request_.camera_id)};
    }
  }

  /// The record of the trigger that is asked for; null if none is.
  std::shared_ptr<trigger> require_trigger(const Records<trigger>& records) const {
    if (!request_.trigger_id) {
      return nullptr;
    }
    const auto found = std::find_if(records.begin(), records.end(), [&](const auto& record) {
      return record->id == *request_.trigger_id;
    });
    if (found == records.end()) {
      throw Nothing_There{
          fmt::format("No trigger {0} is stored; \"explain {0}\" says why.", *request_.trigger_id)};
    }
    return *found;
  }

  std::shared_ptr<trigger> wanted_trigger() const {
    return require_trigger(embedded_server::read_triggers(database_));
  }

  Ids triggers_at(std::uint64_t camera_id) const {
    Ids found;
    for (const auto& record : embedded_server::read_subscriptions(database_)) {
      if (is_of(*record, camera_id)) {
        const std::vector<std::uint64_t> ids = record->trigger_ids();
        found.insert(ids.begin(), ids.end());
      }
    }
    for (const auto& record : embedded_server::read_eta_cameras(database_)) {
      if (record->camera_id() == camera_id) {
        for (const auto& held : record->triggers) {
          found.insert(held->id);
        }
      }
    }
    return found;
  }

  Ids cameras_of(std::uint64_t trigger_id) const {
    Ids found;
    for (const auto& record : embedded_server::read_subscriptions(database_)) {
      if (record->camera && holds(*record, trigger_id)) {
        found.insert(record->camera_id());
      }
    }
    for (const auto& record : embedded_server::read_eta_cameras(database_)) {
      if (holds(*record, trigger_id)) {
        found.insert(record->camera_id());
      }
    }
    return found;
  }

  const Options& options_;
  const Show_Request& request_;
  std::shared_ptr<Database> database_;
  embedded_server::Pass_Scope state_;
  std::optional<std::size_t> sort_column_;
};

void keep_wanted(const Show_Request& request, operations::Inactive_Triggers& inactive) {
  if (request.trigger_id) {
    auto& first = inactive.first;
    first.erase(
        std::remove_if(first.begin(), first.end(),
                       [&](const auto& trigger) { return trigger.id != *request.trigger_id; }),
        first.end());
    inactive.count = first.size();
  }
}

/// What is configured and not stored; a document that cannot be judged is no fault of what is.
void show_inactive(const Options& options, const Show_Request& request,
                   const std::shared_ptr<Database>& database) {
  operations::Inactive_Triggers inactive;
  try {
    inactive = operations::inactive_triggers(
        database, options.server_id,
        request.trigger_id ? std::numeric_limits<std::size_t>::max() : most_inactive);
  } catch (const embedded_server::Damaged_Document& error) {
    std::cout << "Which triggers are configured and not stored is not known: "
              << embedded_server::printable(error.what()) << ".\n";
    return;
  }
  keep_wanted(request, inactive);
  if (inactive.count > 0) {
    std::cout << (request.trigger_id ? "" : "\n");
    print_inactive_triggers(inactive);
  } else if (request.trigger_id) {
    throw Nothing_There{
        fmt::format("Trigger {} is neither stored nor configured.", *request.trigger_id)};
  }
}

void show_site(const Options& options, const Show_Request& request) {
  const auto database = Database::open(options.database);
  bool has_inactive = false;
  {
    const Shown_Site site(options, request, database);
    if (request.what == "triggers") {
      has_inactive = site.show_triggers();
    } else if (request.what == "subscriptions") {
      site.show_subscriptions();
    } else if (request.what == "detection") {
      site.show_detection();
    } else if (request.what == "cameras") {
      site.show_cameras();
    } else if (request.what == "schedules") {
      site.show_schedules();
    } else {
      site.show_rest();
    }
  }
  if (has_inactive) {
    show_inactive(options, request, database);
  }
}

}  // namespace

std::vector<std::string> things_to_show() {
  std::vector<std::string> all;
  for (const Kind& kind : kinds()) {
    all.emplace_back(kind.what);
  }
  return all;
}

Exit_Status show(const Options& options, const Show_Request& request) {
  std::string complaint = what_is_wrong_with(request, kind_of(request));
  if (complaint.empty()) {
    try {
      show_site(options, request);
      return exit_done;
    } catch (const Nothing_There& nothing) {
      complaint = nothing.message;
    }
  }
  print_wrong_usage(options.json, complaint);
  return exit_usage;
}

}  // namespace kuv::vemora::tools
