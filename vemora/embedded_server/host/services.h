#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "vemora/platform/export.h"
#include "vemora/platform/services/capture_manager.h"
#include "vemora/platform/services/meta_type_resolver.h"
#include "vemora/platform/services/trigger_notification_pusher.h"

namespace kuv::vemora::embedded_server {

/// Keeps what it was asked for. The work is done by the capture manager behind it, where there is
/// one; without, there are no cameras.
class VEMORA_API Recording_Capture_Manager : public capture::Manager {
 public:
  explicit Recording_Capture_Manager(std::shared_ptr<capture::Manager> behind = nullptr);

  void reconcile_metadata_stream(std::uint64_t camera_id) override;

  // Of the time since the last forget().
  const std::set<std::uint64_t>& asked_for() const { return asked_for_; }
  const std::set<std::uint64_t>& reconciled() const { return reconciled_; }  ///< nothing was thrown

  void forget();

 private:
  std::shared_ptr<capture::Manager> behind_;
  std::set<std::uint64_t> asked_for_;
  std::set<std::uint64_t> reconciled_;
};

/// Keeps the state it was given last. It is delivered by the pusher behind it, where there is one.
class VEMORA_API Snapshot_Pusher : public Trigger_Notification_Pusher {
 public:
  explicit Snapshot_Pusher(std::shared_ptr<Trigger_Notification_Pusher> behind = nullptr);

  void stop() override;
  void apply_trigger_state(Trigger_Config_State state) override;

  /// Nothing when none was taken since the last forget().
  const std::optional<Trigger_Config_State>& state() const { return state_; }
  void forget() { state_.reset(); }

 private:
  std::shared_ptr<Trigger_Notification_Pusher> behind_;
  std::optional<Trigger_Config_State> state_;
};

/// Resolves object types as the site's inventory says.
class VEMORA_API Inventory_Meta_Type_Resolver : public Meta_Type_Resolver {
 public:
  using Object_Types = std::map<std::string, std::set<std::string>>;

  Inventory_Meta_Type_Resolver() = default;

  /// General name to what it stands for, which may be general again.
  void learn(Object_Types types) { types_ = std::move(types); }

  /// The types at the end of the road, each once; a name that is no general one stands for itself.
  std::vector<std::string> resolve(const std::vector<std::string>& types) override;

 private:
  Object_Types types_;
};

/// General names that lead back to themselves, each as the road from the name to itself. Of roads
/// that cross, the first.
VEMORA_API std::vector<std::vector<std::string>> find_cycles(
    const Inventory_Meta_Type_Resolver::Object_Types& types);

/// How many types a general name may stand for. What a trigger listens to is told to the pusher
/// with every type for every camera: with 1,000 cameras that are a million texts a trigger.
constexpr std::size_t most_types_of_a_general_one = 1000;

/// How many general names a site may have.
constexpr std::size_t most_general_object_types = 20000;

/// What is beyond those bounds.
struct Overgrown_Types {
  bool too_many_general = false;
  std::vector<std::string> names;  ///< that stand for too many; not looked for among too many
};

VEMORA_API Overgrown_Types find_overgrown(const Inventory_Meta_Type_Resolver::Object_Types& types);

}  // namespace kuv::vemora::embedded_server
