// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>

#include "support/stub_platform/stub_platform.h"
#include "trigger_manager/builders.h"
#include "vemora/platform/repositories/repository.h"
#include "vemora/platform/services/capture_manager.h"
#include "vemora/platform/services/meta_type_resolver.h"
#include "vemora/platform/services/trigger_notification_pusher.h"
#include "vemora/trigger_manager/trigger_manager.h"
#include "vemora/trigger_parser/trigger_parser.h"

namespace kuv::test {

/// A site whose every collaborator answers by a script: the same in every pass, whatever was
/// written before, with records made anew. Each call, those of the platform's functions and of the
/// log included, is told to one listener before it is answered.
///
/// Nothing in here is guarded: the manager's lock is all there is.
class Scripted_Site {
 public:
  enum class Answer {
    by_the_script,
    refused,  ///< false, null or an empty list; other calls have no refusal and pass over it
  };
  /// May throw: then that is what the call does.
  using Listener = std::function<Answer(const std::string& call)>;

  Scripted_Site();
  ~Scripted_Site();
  Scripted_Site(const Scripted_Site&) = delete;
  Scripted_Site& operator=(const Scripted_Site&) = delete;

  /// The configuration that uses every operation there is, and the mapping that goes with it.
  static const Json::Value config;
  static const Json::Value mapping;

  /// A manager of this site, with the real parser. It gets null pointers for what is missing, such
  /// as "parser", "repository of the parser" or "trigger repository".
  std::unique_ptr<Trigger_Manager> a_manager(const Json::Value& stored_config,
                                             const Json::Value& stored_mapping,
                                             const std::set<std::string>& missing = {});

  /// Whom calls are told from now on; nobody, when it is empty.
  void listen(Listener listener) { listener_ = std::move(listener); }

  /// For the collaborators: tells of a call, and whether it is to be refused.
  bool refuses(const std::string& call);

  std::optional<Trigger_Config_State> pushed;  ///< by the last pass that came so far

 private:
  Listener listener_;
  stub_platform::Listening platform_calls_;
};

}  // namespace kuv::test
