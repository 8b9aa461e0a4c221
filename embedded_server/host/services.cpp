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

std::optional<std::string> find_cycle(const Object_Types& types) {
  for (const auto& [name, stands_for] : types) {
    std::set<std::string> reached;
    for (const std::string& type : stands_for) {
      gather(types, type, reached);
    }
    if (reached.count(name) != 0) {
      return name;
    }
  }
  return std::nullopt;
}

}  // namespace kuv::vemora::embedded_server
