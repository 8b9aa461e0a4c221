// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "vemora/embedded_server/documents/json_document.h"
#include "vemora/embedded_server/persistent/database.h"
#include "vemora/operations/match/event.h"
#include "vemora/operations/site/reason.h"
#include "vemora/platform/export.h"

namespace kuv::vemora::operations {

/// Who is told of an event. Schedules and durations are not judged.
struct Match {
  /// A trigger, as people know it.
  struct Trigger {
    std::uint64_t id = 0;
    std::string name;
  };

  /// A trigger that has a source for such events and is not told of this one.
  struct Near_Miss {
    Trigger trigger;
    Reasons reasons;
  };

  bool is_known = false;  ///< the site, or a record, has the camera or generic subscription
  std::vector<Trigger> triggers;
  std::vector<Near_Miss> near_misses;
  /// Why the camera reports no such events, though records say who would be told; nothing where it
  /// may report them.
  std::optional<Reason> unexpected;
};

/// Reads one state of the site; writes nothing and waits for nobody. Throws Database_Error.
VEMORA_API Match match(const std::shared_ptr<embedded_server::Database>& database,
                       std::uint64_t server_id, const Event& event);

/// What becomes of many events.
struct Event_Counts {
  std::uint64_t events = 0;
  std::uint64_t unheard = 0;                        ///< that no trigger is told of
  std::map<std::uint64_t, std::uint64_t> triggers;  ///< how many each trigger is told of
};

/// A trigger that is told of events of a camera, or of a generic subscription, with some documents
/// and not with others.
struct Changed_Listening {
  std::uint64_t trigger_id = 0;
  std::optional<std::uint64_t> camera_id;  ///< one of the two
  std::optional<std::uint64_t> subscription_id;
  std::uint64_t events = 0;
  Reasons reasons;  ///< why it is not told with the others
};

/// What becomes of many events, and what would with other documents.
struct Compared_Counts {
  Event_Counts counts;                    ///< as stored
  std::vector<Changed_Listening> gained;  ///< told with the new documents only
  std::vector<Changed_Listening> lost;    ///< told as stored only
};

/// The next event, until there is none.
using Event_Source = std::function<std::optional<Event>()>;

/// The same for as many events as there are, in memory that does not grow with their number. Throws
/// what the source throws as well.
VEMORA_API Event_Counts count_events(const std::shared_ptr<embedded_server::Database>& database,
                                     std::uint64_t server_id, const Event_Source& next);

/// The same as stored, and as it would be once the documents were applied: the pass on them is run
/// in memory. They are valid; without a mapping, the stored one is used.
VEMORA_API Compared_Counts
compare_events(const std::shared_ptr<embedded_server::Database>& database, std::uint64_t server_id,
               const embedded_server::Json_Document& config,
               const embedded_server::Json_Document* mapping, const Event_Source& next);

}  // namespace kuv::vemora::operations
