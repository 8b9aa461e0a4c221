// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <functional>
#include <string>

#include "vemora/platform/export.h"

/// Stands in for the server's libraries where the system calls their functions directly and no mock
/// can be handed in. Each function does the least that its contract asks for. A listener hears of
/// every call before it is answered, and may throw: then that is what the call does.
namespace kuv::test::stub_platform {

enum class Function {
  eta_camera_camera_id,
  eta_camera_add_trigger,
  eta_camera_remove_trigger,
  subscription_camera_id,
  subscription_trigger_ids,
  subscription_add_trigger,
  subscription_remove_trigger,
  compare_cameras,
  compare_triggers,
  convert_source_type,
  matches_any,
  parse_search_tags,
  set_json_value_if_null,
  init_log_source,
};

/// `call` names the function, the record it is called on and its arguments.
using Listener = std::function<void(Function function, const std::string& call)>;

/// Replaces the listener; an empty one hears nothing.
VEMORA_API void listen(Listener listener);

/// Hears for as long as it lives.
class Listening {
 public:
  explicit Listening(Listener listener) { listen(std::move(listener)); }
  ~Listening() { listen({}); }
  Listening(const Listening&) = delete;
  Listening& operator=(const Listening&) = delete;
};

/// For the stubs: tells the listener.
VEMORA_API void called(Function function, const std::string& call);

}  // namespace kuv::test::stub_platform
