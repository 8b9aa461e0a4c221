#include <array>
#include <utility>

#include "vemora/embedded_server/host/services.h"
#include "vemora/embedded_server/persistent/inventory.h"
#include "vemora/embedded_server/persistent/pass_scope.h"
#include "vemora/operations/match/listeners.h"
#include "vemora/operations/match/match.h"

namespace kuv::vemora::operations {
namespace {

/// How many events of each sort there were. Only sorts that some trigger might be told of have a
/// count, so that there are no more of them than records and types searched for.
class Event_Sorts {
 public:
  explicit Event_Sorts(const Listeners& listeners) : listeners_(listeners) {}

  /// False where no trigger can be told of it.
  bool count(const Event& event) {
    const Site_Records& records = listeners_.records();
    switch (event.kind) {
      case Event::Kind::topic: {
        const auto camera = records.topics.find(event.place);
        return camera != records.topics.end() && camera->second.count(event.text) != 0 &&
               ++topics_[event.place][event.text] > 0;
      }
      case Event::Kind::object:
        return records.detection.count(event.place) != 0 && listeners_.is_searched(event.text) &&
               ++objects_[event.place][event.text].at(event.in_motion ? 1 : 0) > 0;
      case Event::Kind::motion:
        return records.detection.count(event.place) != 0 && ++motion_[event.place] > 0;
      case Event::Kind::subscription:
        return records.generic.count(event.place) != 0 && ++generic_[event.place] > 0;
    }
    return false;
  }

  /// Calls `take` with an event of each sort, and their number.
  template <class Take>
  void for_each(Take take) const {
    for (const auto& [camera_id, topics] : topics_) {
      for (const auto& [topic, count] : topics) {
        take(Event{Event::Kind::topic, camera_id, topic, false}, count);
      }
    }
    for (const auto& [camera_id, types] : objects_) {
      for (const auto& [type, counts] : types) {
        take(Event{Event::Kind::object, camera_id, type, false}, counts[0]);
        take(Event{Event::Kind::object, camera_id, type, true}, counts[1]);
      }
    }
    for (const auto& [camera_id, count] : motion_) {
      take(Event{Event::Kind::motion, camera_id, {}, false}, count);
    }
    for (const auto& [subscription_id, count] : generic_) {
      take(Event{Event::Kind::subscription, subscription_id, {}, false}, count);
    }
  }

 private:
  using Count = std::uint64_t;

  const Listeners& listeners_;
  std::map<std::uint64_t, std::map<std::string, Count>> topics_;
  std::map<std::uint64_t, std::map<std::string, std::array<Count, 2>>> objects_;
  std::map<std::uint64_t, Count> motion_;
  std::map<std::uint64_t, Count> generic_;
};

}  // namespace

Event_Counts count_events(const std::shared_ptr<embedded_server::Database>& database,
                          std::uint64_t server_id, const Event_Source& next) {
  Site_Records records;
  embedded_server::Inventory_Meta_Type_Resolver resolver;
  {
    // Over before the events are read, which may take as long as somebody types them.
    const embedded_server::Pass_Scope scope(database, server_id,
                                            embedded_server::Pass_Scope::Mode::read_only);
    resolver.learn(load_object_types(database));
    records = read_site_records(database);
  }
  const Listeners listeners(records, resolver);
  Event_Sorts sorts(listeners);
  Event_Counts counts;
  while (const std::optional<Event> event = next()) {
    ++counts.events;
    counts.unheard += sorts.count(*event) ? 0 : 1;
  }
  sorts.for_each([&](const Event& event, std::uint64_t count) {
    const Listeners::Ids told = listeners.told_of(event);
    counts.unheard += told.empty() ? count : 0;
    for (const std::uint64_t id : told) {
      if (count > 0) {
        counts.triggers[id] += count;
      }
    }
  });
  return counts;
}

}  // namespace kuv::vemora::operations
