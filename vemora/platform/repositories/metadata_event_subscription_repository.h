// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <cstdint>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "vemora/platform/export.h"
#include "vemora/platform/records/metadata_event_subscription.h"
#include "vemora/platform/tags/tag_search_term.h"

namespace kuv::vemora {

/// The subscriptions to metadata events. Every list comes in ascending order of record id, without
/// duplicates and without null pointers.
///
/// A bool answer is true when the record is stored and false when the database refused it; queries
/// answer what is stored from then on. A refusal costs the trigger this one record or change, and
/// is reported. What an exception costs depends on the operation, see Repository.
class VEMORA_API Metadata_Event_Subscription_Repository {
 public:
  /// No pointer in it is null.
  using Subscription_List = std::vector<std::shared_ptr<metadata_event_subscription>>;

  /// What Get_Matching_Subscriptions looks for. With nothing but `trigger` set: every subscription
  /// that holds it, of both kinds.
  struct Get_Matching_Subscriptions_Params {
    /// How `trigger` is meant.
    enum class Trigger_Match {
      holding,  ///< the subscription serves `trigger`
      lacking,  ///< it does not
    };
    /// What has a camera and no topic, or a topic and no camera, is corrupt and of neither kind.
    enum class Kind {
      any,      ///< whatever it has or lacks
      topic,    ///< with a camera and an ONVIF topic
      generic,  ///< with neither
    };
    /// How `topics` and `cameras` are meant.
    enum class Topics_And_Cameras {
      matching,  ///< on one of `topics` and on one of `cameras`; an empty list restricts nothing
      /// Everything but what lies inside, whatever it has or lacks. Inside is what is on one of
      /// `topics` and, where there are any `cameras`, on one of them; so with no topics nothing is.
      outside,
    };
    /// How `tags` are meant.
    enum class Tags {
      matching,      ///< a tag satisfies one of `tags`; with no terms every subscription does
      not_matching,  ///< no tag does; with no terms no subscription is selected
    };

    std::shared_ptr<vemora::trigger> trigger;      ///< null: held or lacked by anybody
    std::vector<std::string> topics;               ///< each compared whole, byte for byte
    std::vector<std::shared_ptr<camera>> cameras;  ///< no null pointers
    std::set<ODB_Utils::Tag_Search_Term> tags;     ///< see `tags_match`

    Trigger_Match trigger_match = Trigger_Match::holding;  ///< how `trigger` is meant
    Kind kind = Kind::any;                                 ///< which kind of subscription
    Topics_And_Cameras topics_and_cameras = Topics_And_Cameras::matching;  ///< how both are meant
    Tags tags_match = Tags::matching;                                      ///< how `tags` are meant
  };

  virtual ~Metadata_Event_Subscription_Repository() = default;

  /// Stores a new topic subscription with its triggers, gives it an id and clears its link_changes.
  /// The repository may keep the object. Refused when it has no camera or no topic, when there is
  /// one for its camera and topic, and when its camera or one of its triggers is not stored.
  virtual bool add(const std::shared_ptr<metadata_event_subscription>& added) = 0;

  /// Stores the triggers that were added to or removed from a subscription since it was loaded or
  /// last stored, and clears its link_changes. Also called for subscriptions that have not changed.
  /// Refused when the subscription, or a trigger added to it, is not stored.
  virtual bool update(const std::shared_ptr<metadata_event_subscription>& changed) = 0;

  /// The subscriptions that satisfy everything that `params` ask for.
  virtual Subscription_List Get_Matching_Subscriptions(
      const Get_Matching_Subscriptions_Params& params) = 0;

  /// The topic subscriptions that hold none of `live_trigger_ids`: what delete_stale deletes once
  /// every other trigger is gone. With no ids, every subscription of both kinds, corrupt ones
  /// included. Called before the clean-up, with the triggers that were applied, and after the last
  /// write, with no ids. An exception fails the pass.
  virtual Subscription_List get_stale(const std::set<std::uint64_t>& live_trigger_ids) = 0;

  /// Deletes the topic subscriptions that hold no trigger, those included that lost their last one
  /// when it was deleted. Generic ones belong to the site. An exception fails the pass.
  virtual void delete_stale() = 0;
};

}  // namespace kuv::vemora
