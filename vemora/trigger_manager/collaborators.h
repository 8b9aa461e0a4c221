// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <memory>

#include "vemora/platform/errors/required.h"
#include "vemora/platform/repositories/repository.h"
#include "vemora/platform/services/capture_manager.h"
#include "vemora/platform/services/meta_type_resolver.h"
#include "vemora/platform/services/trigger_notification_pusher.h"
#include "vemora/trigger_parser/trigger_parser.h"

/// The manager's collaborators, each of which may be null until an operation needs it.
namespace kuv::vemora {

inline Repository& required(const std::shared_ptr<Repository>& repository) {
  return required(repository, "The trigger manager was constructed without a repository");
}

inline capture::Manager& required(const std::shared_ptr<capture::Manager>& capture_manager) {
  return required(capture_manager, "The trigger manager was constructed without a capture manager");
}

inline Trigger_Parser& required(const std::shared_ptr<Trigger_Parser>& parser) {
  return required(parser, "The trigger manager was constructed without a parser");
}

inline Trigger_Notification_Pusher& required(
    const std::shared_ptr<Trigger_Notification_Pusher>& notification_pusher) {
  return required(notification_pusher,
                  "The trigger manager was constructed without a notification pusher");
}

inline Meta_Type_Resolver& required(const std::shared_ptr<Meta_Type_Resolver>& meta_type_resolver) {
  return required(meta_type_resolver,
                  "The trigger manager was constructed without a meta type resolver");
}

}  // namespace kuv::vemora
