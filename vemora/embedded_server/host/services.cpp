#include "vemora/embedded_server/host/services.h"

#include <algorithm>
#include <iterator>
#include <string_view>

namespace kuv::vemora::embedded_server {
namespace {

using Object_Types = Inventory_Meta_Type_Resolver::Object_Types;

/// Every name that `name` leads to, itself included; general ones too.
void gather(const Object_Types& types, const std::string& name, std::set<std::string>& reached) {
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

/// Follows every name once, without calling itself.
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
  /// A general name on the road, and which of the names that it stands for is next.
  struct Stop {
    Object_Types::const_iterator type;
    std::set<std::string>::const_iterator next;
    std::size_t named;  ///< how many stops up to this one are in a cycle that was noted
  };

  void follow(Object_Types::const_iterator start) {
    enter(start);
    while (!road_.empty()) {
      Stop& stop = road_.back();
      if (stop.next == stop.type->second.end()) {
        on_road_.erase(stop.type->first);
        road_.pop_back();
      } else {
        enter(types_.find(*stop.next++));
      }
    }
  }

  void enter(Object_Types::const_iterator type) {
    if (type == types_.end()) {
      return;
    }
    const auto place = on_road_.find(type->first);
    if (place != on_road_.end()) {
      note_cycle(place->second);
    } else if (followed_.insert(type->first).second) {
      on_road_[type->first] = road_.size();
      road_.push_back({type, type->second.begin(), named_before(road_.size())});
    }
  }

  std::size_t named_before(std::size_t place) const {
    return place == 0 ? 0 : road_[place - 1].named;
  }

  void note_cycle(std::size_t from) {
    std::size_t named = named_before(from);
    if (road_.back().named != named) {
      return;  // a name of it is in a cycle already
    }
    std::vector<std::string> names;
    for (std::size_t place = from; place < road_.size(); ++place) {
      names.push_back(road_[place].type->first);
      road_[place].named = ++named;
    }
    names.push_back(names.front());
    cycles_.push_back(std::move(names));
  }

  const Object_Types& types_;
  std::vector<Stop> road_;
  std::map<std::string, std::size_t> on_road_;  ///< name to place
  std::set<std::string> followed_;
  std::vector<std::vector<std::string>> cycles_;
};

/// The general names, each behind those that it leads to. Every name is followed once, without a
/// function that calls itself.
std::vector<Object_Types::const_iterator> leaves_first(const Object_Types& types) {
  struct Stop {
    Object_Types::const_iterator type;
    std::set<std::string>::const_iterator next;
  };
  std::vector<Object_Types::const_iterator> ordered;
  std::set<std::string_view> entered;
  std::vector<Stop> road;
  const auto enter = [&](Object_Types::const_iterator type) {
    if (type != types.end() && entered.insert(type->first).second) {
      road.push_back({type, type->second.begin()});
    }
  };
  for (auto start = types.begin(); start != types.end(); ++start) {
    enter(start);
    while (!road.empty()) {
      Stop& stop = road.back();
      if (stop.next == stop.type->second.end()) {
        ordered.push_back(stop.type);
        road.pop_back();
      } else {
        enter(types.find(*stop.next++));
      }
    }
  }
  return ordered;
}

/// Counts what general names stand for, and no further than the bound.
class Type_Count {
 public:
  explicit Type_Count(const Object_Types& types) : types_(types) {}

  std::vector<std::string> overgrown() {
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
  using Number = std::uint32_t;  ///< of a type at the end of the road

  /// Of the types that these names lead to; where they are too many, as many as show it.
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
      const auto inner = found_.find(name);  // none, where a name leads back to itself
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

Recording_Capture_Manager::Recording_Capture_Manager(std::shared_ptr<capture::Manager> behind)
    : behind_(std::move(behind)) {}

void Recording_Capture_Manager::reconcile_metadata_stream(std::uint64_t camera_id) {
  asked_for_.insert(camera_id);
  if (behind_) {
    behind_->reconcile_metadata_stream(camera_id);
  }
  reconciled_.insert(camera_id);
}

void Recording_Capture_Manager::forget() {
  asked_for_.clear();
  reconciled_.clear();
}

Snapshot_Pusher::Snapshot_Pusher(std::shared_ptr<Trigger_Notification_Pusher> behind)
    : behind_(std::move(behind)) {}

void Snapshot_Pusher::stop() {
  if (behind_) {
    behind_->stop();
  }
  forget();
}

void Snapshot_Pusher::apply_trigger_state(Trigger_Config_State state) {
  if (behind_) {
    behind_->apply_trigger_state(state);
  }
  state_ = std::move(state);
}

std::vector<std::string> Inventory_Meta_Type_Resolver::resolve(
    const std::vector<std::string>& types) {
  std::set<std::string> reached;
  for (const std::string& type : types) {
    gather(types_, type, reached);
  }
  std::vector<std::string> leaves;
  std::copy_if(reached.begin(), reached.end(), std::back_inserter(leaves),
               [this](const std::string& name) { return types_.count(name) == 0; });
  return leaves;
}

std::vector<std::vector<std::string>> find_cycles(const Object_Types& types) {
  return Cycle_Search(types).run();
}

Overgrown_Types find_overgrown(const Object_Types& types) {
  if (types.size() > most_general_object_types) {
    return {true, {}};
  }
  return {false, Type_Count(types).overgrown()};
}

}  // namespace kuv::vemora::embedded_server
