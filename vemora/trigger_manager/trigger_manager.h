// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <json/value.h>

#include "vemora/platform/directive_config_processing.h"
#include "vemora/platform/export.h"
#include "vemora/trigger_parser/trigger_config_state.h"

namespace kuv::vemora {

/// The way a video-management server drives its triggers. The order of the operations is part of
/// the ABI.
///
/// There are two documents: the trigger configuration ("triggers", "properties") and the trigger
/// mapping ("triggerMapping"). An update passes a new one; a refresh repeats the work on the
/// current ones, for a site that changed. Each of them runs one pass: both documents are validated,
/// the records of the triggers and of what they listen to are updated, records that no trigger
/// needs are deleted, the streams of the changed cameras are reconciled, and the notification
/// pusher receives the outcome.
///
/// Every operation may be called from any thread. Passes never overlap; readers run together and
/// wait for a running pass. What the manager calls (repository, capture manager, pusher, resolver)
/// it calls on the caller's thread and under its lock: none of them may call back, nor wait for a
/// thread that does. The call would wait for its own pass forever. Builds without NDEBUG notice one
/// on the thread of the pass, by any operation of the interface, and throw
/// Internal_Error<std::logic_error> into the one that calls back.
class VEMORA_API Trigger_Manager {
 public:
  virtual ~Trigger_Manager() = default;

  /// Runs a pass with a new configuration and stores it. Triggers that fail by themselves are
  /// reported in a successful result. Answers failure with one error, and keeps the old
  /// configuration,
  ///  - when either document could not be read, or what it names could not be looked up: category
  ///    rejected_document, nothing was applied;
  ///  - when the pass fails: category failed_processing, what it had written stays.
  /// What propagates: exceptions that are not derived from std::exception; what the manager's lock
  /// throws; std::bad_alloc where there is no memory for the answer itself. A log that fails takes
  /// no error from the answer.
  virtual Directive_Config_Processing::Result update_config(const Json::Value& config) = 0;

  /// Runs a pass on the stored documents, which stay as they are. False when it failed; what it had
  /// written stays. Exceptions propagate as from update_config.
  virtual bool refresh_triggers() = 0;

  /// The same, and replaces all of `state` by the outcome, which is what the notification pusher
  /// received, or the one error of a failed pass. An exception leaves `state` as it was.
  virtual bool refresh_triggers(Trigger_Config_State& state) = 0;

  /// A copy of the configuration last accepted; until then, of the one that the manager was made
  /// with, completed.
  virtual Json::Value get_config() = 0;

  /// Runs a pass with a new trigger mapping, stores it and answers the outcome, which is what the
  /// notification pusher received. Unlike update_config it throws what the pass throws, a rejected
  /// document included, and then keeps the old mapping.
  virtual Trigger_Config_State update_trigger_mapping(const Json::Value& mapping) = 0;

  /// A copy of the trigger mapping last accepted; until then, of the one that the manager was made
  /// with, completed.
  virtual Json::Value get_trigger_mapping() = 0;
};

}  // namespace kuv::vemora
