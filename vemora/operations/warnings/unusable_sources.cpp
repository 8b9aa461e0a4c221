// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/operations/warnings/unusable_sources.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <set>
#include <string>

#include "vemora/embedded_server/persistent/inventory.h"
#include "vemora/embedded_server/persistent/source_type_names.h"
#include "vemora/operations/warnings/nearest_name.h"
#include "vemora/trigger_parser/source_types.h"

namespace kuv::vemora::operations {
namespace {

/// The object types of a site's inventory, general ones and leaves.
class Object_Types {
 public:
  explicit Object_Types(const std::shared_ptr<embedded_server::Database>& database) {
    for (const auto& [general, types] : load_object_types(database)) {
      names_.insert(general);
      names_.insert(types.begin(), types.end());
    }
  }

  /// An inventory that names none says nothing about any.
  bool may_have(const std::string& name) const { return names_.empty() || names_.count(name) != 0; }

  const std::string& nearest(const std::string& wrong) {
    const auto known = nearest_.find(wrong);
    return known != nearest_.end() ? known->second
                                   : nearest_.emplace(wrong, look_for(wrong)).first->second;
  }

 private:
  std::string look_for(const std::string& wrong) {
    Nearest_Name nearest(wrong);
    for (const std::string& name : names_) {
      if (budget_.is_spent()) {
        return {};
      }
      budget_.spend(nearest.offer(name));
    }
    return std::string(nearest.found());
  }

  std::set<std::string> names_;
  std::map<std::string, std::string> nearest_;  ///< to each that was looked for
  Comparison_Budget budget_;
};

class Source_Judge {
 public:
  Source_Judge(Object_Types& types, Found_Warnings& found) : types_(types), found_(found) {}

  void judge(const Judged_Trigger& trigger) {
    const Json::Value& sources = trigger.element["sources"];
    if (trigger.config == nullptr || trigger.config->sources.size() != sources.size()) {
      warn_of_unknown_types(trigger, sources);
    }
    if (trigger.config == nullptr) {
      found_.in_config(
          "no-usable-source", sources, trigger.subject,
          "The trigger is left out: it has no source that can be subscribed to; give it one, "
          "or take it out.");
      return;
    }
    const auto& kept = trigger.config->sources;
    if (std::any_of(kept.begin(), kept.end(), [this](const Trigger_Source& source) {
          return source.search_item && !types_.may_have(source.search_item->object_type);
        })) {
      warn_of_object_types(trigger, sources);
    }
  }

 private:
  void warn_of_unknown_types(const Judged_Trigger& trigger, const Json::Value& sources) {
    for (const Json::Value& source : sources) {
      const std::string type = source["type"].asString();
      if (source_types_.type_of(type)) {
        continue;
      }
      Nearest_Name nearest(type);
      for (const std::string_view name : source_type_names) {
        nearest.offer(name);
      }
      found_.in_config("unknown-source-type", source["type"], trigger.subject,
                       fmt::format("Source type {} is not known, so the source is left out{}",
                                   in_quotes(type), asking_for(nearest.found())));
    }
  }

  void warn_of_object_types(const Judged_Trigger& trigger, const Json::Value& sources) {
    for (const Json::Value& source : sources) {
      if (source_types_.type_of(source["type"].asString()) !=
          Trigger_Source_Type::object_detection) {
        continue;
      }
      const Json::Value& type = source["searchItem"]["type"];
      if (!types_.may_have(type.asString())) {
        found_.in_config(
            "unknown-object-type", type, trigger.subject,
            fmt::format("The site's inventory knows no object type {}{}",
                        in_quotes(type.asString()), asking_for(types_.nearest(type.asString()))));
      }
    }
  }

  Object_Types& types_;
  Found_Warnings& found_;
  Source_Types source_types_;
};

}  // namespace

void warn_of_sources(const std::shared_ptr<embedded_server::Database>& database,
                     const std::vector<Judged_Trigger>& triggers, Found_Warnings& found) {
  Object_Types types(database);
  Source_Judge judge(types, found);
  for (const Judged_Trigger& trigger : triggers) {
    if (trigger.is_ours) {
      judge.judge(trigger);
    }
  }
}

}  // namespace kuv::vemora::operations
