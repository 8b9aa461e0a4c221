#include "vemora/embedded_server/host/services.h"

#include <algorithm>
#include <iterator>

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
      road_.push_back({type, type->second.begin()});
    }
  }

  void note_cycle(std::size_t from) {
    std::vector<std::string> names;
    std::transform(road_.begin() + static_cast<std::ptrdiff_t>(from), road_.end(),
                   std::back_inserter(names), [](const Stop& stop) { return stop.type->first; });
    if (std::any_of(names.begin(), names.end(),
                    [this](const std::string& name) { return named_.count(name) != 0; })) {
      return;
    }
    named_.insert(names.begin(), names.end());
    names.push_back(names.front());
    cycles_.push_back(std::move(names));
  }

  const Object_Types& types_;
  std::vector<Stop> road_;
  std::map<std::string, std::size_t> on_road_;  ///< name to place
  std::set<std::string> followed_;
  std::set<std::string> named_;  ///< in a cycle
  std::vector<std::vector<std::string>> cycles_;
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

}  // namespace kuv::vemora::embedded_server
