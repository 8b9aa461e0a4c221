// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/persistent/engine/told_wait.h"

#include <atomic>

#include "vemora/embedded_server/persistent/long_wait.h"

namespace kuv::vemora::embedded_server {
namespace {

using Tell = void (*)() noexcept;

std::atomic<Tell> told = nullptr;

}  // namespace

void on_long_wait(void (*tell)() noexcept) noexcept {
  told = tell;
}

void tell_of_long_wait() noexcept {
  if (const Tell tell = told) {
    tell();
  }
}

}  // namespace kuv::vemora::embedded_server
