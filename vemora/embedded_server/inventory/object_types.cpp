// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/inventory/object_types.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <string_view>
#include <utility>

namespace kuv::vemora::embedded_server {
namespace {

/// Adds `name` and every name that it leads to, general or not.
void collect(const Object_Types& types, const std::string& name, std::set<std::string>& reached) {
  std::vector<std::string> open{name};
  while (!open.empty()) {
    const std::string next = std::move(open.back());
    open.pop_back();
    const auto general = types.find(next);
    if (reached.insert(next).second && general != types.end()) {
      open.insert(open.end(), general->second.begin(), general->second.end());
    }
  }
}

/// A depth-first search that visits every name once. It does not recurse, so that no chain of names
/// is too long for the stack.
class Cycle_Search {
 public:
  explicit Cycle_Search(const Object_Types& types) : types_(types) {}

  std::vector<std::vector<std::string>> run() {
    for (auto type = types_.begin(); type != types_.end(); ++type) {
      follow(type);
    }
    return std::move(cycles_);
  }

 private:
  /// A general name on the current path.
  struct Step {
    Object_Types::const_iterator type;
    std::set<std::string>::const_iterator next;  ///< of the names that it stands for
    std::size_t reported;  ///< how many steps up to this one are in a cycle that was reported
  };

  void follow(Object_Types::const_iterator start) {
    enter(start);
    while (!path_.empty()) {
      Step& step = path_.back();
      if (step.next == step.type->second.end()) {
        depths_.erase(step.type->first);
        path_.pop_back();
      } else {
        enter(types_.find(*step.next++));
      }
    }
  }

  void enter(Object_Types::const_iterator type) {
    if (type == types_.end()) {
      return;
    }
    const auto depth = depths_.find(type->first);
    if (depth != depths_.end()) {
      report_cycle(depth->second);
    } else if (visited_.insert(type->first).second) {
      depths_[type->first] = path_.size();
      path_.push_back({type, type->second.begin(), reported_before(path_.size())});
    }
  }

  std::size_t reported_before(std::size_t depth) const {
    return depth == 0 ? 0 : path_[depth - 1].reported;
  }

  void report_cycle(std::size_t from) {
    std::size_t reported = reported_before(from);
    if (path_.back().reported != reported) {
      return;  // one of its names is in a reported cycle
    }
    std::vector<std::string> names;
    for (std::size_t depth = from; depth < path_.size(); ++depth) {
      names.push_back(path_[depth].type->first);
      path_[depth].reported = ++reported;
    }
    names.push_back(names.front());
    cycles_.push_back(std::move(names));
  }

  const Object_Types& types_;
  std::vector<Step> path_;
  std::map<std::string, std::size_t> depths_;  ///< of the names on the path
  std::set<std::string> visited_;
  std::vector<std::vector<std::string>> cycles_;
};

/// The general names, each after those that it leads to; names in cycles in any order. Not
/// recursive, as above.
std::vector<Object_Types::const_iterator> leaves_first(const Object_Types& types) {
  struct Step {
    Object_Types::const_iterator type;
    std::set<std::string>::const_iterator next;
  };
  std::vector<Object_Types::const_iterator> ordered;
  std::set<std::string_view> entered;
  std::vector<Step> path;
  const auto enter = [&](Object_Types::const_iterator type) {
    if (type != types.end() && entered.insert(type->first).second) {
      path.push_back({type, type->second.begin()});
    }
  };
  for (auto start = types.begin(); start != types.end(); ++start) {
    enter(start);
    while (!path.empty()) {
      Step& step = path.back();
      if (step.next == step.type->second.end()) {
        ordered.push_back(step.type);
        path.pop_back();
      } else {
        enter(types.find(*step.next++));
      }
    }
  }
  return ordered;
}

/// Counts the types that general names stand for, up to the limit.
class Type_Count {
 public:
  explicit Type_Count(const Object_Types& types) : types_(types) {}

  std::vector<std::string> excessive() {
    std::vector<std::string> names;
    for (const Object_Types::const_iterator type : leaves_first(types_)) {
      std::vector<Number> found = numbers_of(type->second);
      if (found.size() > most_types_of_a_general_one) {
        names.push_back(type->first);
      }
      found_.emplace(type->first, std::move(found));
    }
    return names;
  }

 private:
  using Number = std::uint32_t;  ///< of a type that is not general

  /// The types that these names lead to; if they exceed the limit, not all of them.
  std::vector<Number> numbers_of(const std::set<std::string>& names) {
    std::set<Number> all;
    for (const std::string& name : names) {
      if (all.size() > most_types_of_a_general_one) {
        break;
      }
      if (types_.count(name) == 0) {
        all.insert(numbers_.try_emplace(name, static_cast<Number>(numbers_.size())).first->second);
        continue;
      }
      const auto inner = found_.find(name);  // none if the name is in a cycle
      if (inner != found_.end()) {
        all.insert(inner->second.begin(), inner->second.end());
      }
    }
    return {all.begin(), all.end()};
  }

  const Object_Types& types_;
  std::map<std::string_view, Number> numbers_;
  std::map<std::string_view, std::vector<Number>> found_;
};

}  // namespace

std::vector<std::string> resolve_object_types(const Object_Types& types,
                                              const std::vector<std::string>& names) {
  std::set<std::string> reached;
  for (const std::string& name : names) {
    collect(types, name, reached);
  }
  std::vector<std::string> leaves;
  std::copy_if(reached.begin(), reached.end(), std::back_inserter(leaves),
               [&types](const std::string& name) { return types.count(name) == 0; });
  return leaves;
}

std::vector<std::vector<std::string>> find_cycles(const Object_Types& types) {
  return Cycle_Search(types).run();
}

Excessive_Types find_excessive_types(const Object_Types& types) {
  if (types.size() > most_general_object_types) {
    return {true, {}};
  }
  return {false, Type_Count(types).excessive()};
}

}  // namespace kuv::vemora::embedded_server
