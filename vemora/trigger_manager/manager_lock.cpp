// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/trigger_manager/manager_lock.h"

#ifndef NDEBUG

#include <fmt/format.h>

#include <stdexcept>

#include "vemora/platform/errors/error_codes.h"
#include "vemora/platform/errors/vemora_error.h"

namespace kuv::vemora {
namespace {

thread_local const Call_Back_Check* innermost = nullptr;

}  // namespace

Call_Back_Check::Call_Back_Check(const boost::shared_mutex& mutex, const char* operation)
    : mutex_(mutex), outer_(innermost) {
  for (const Call_Back_Check* running = outer_; running != nullptr; running = running->outer_) {
    if (&running->mutex_ == &mutex) {
      throw Internal_Error<std::logic_error>(
          fmt::format(
              "{} was called by what the trigger manager calls during its pass; without the "
              "checks of debug builds it would wait for itself forever",
              operation),
          error_codes::internal);
    }
  }
  innermost = this;
}

Call_Back_Check::~Call_Back_Check() {
  innermost = outer_;
}

}  // namespace kuv::vemora

#endif
