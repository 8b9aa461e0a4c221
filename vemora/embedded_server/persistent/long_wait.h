// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include "vemora/platform/export.h"

namespace kuv::vemora::embedded_server {

/// Makes `tell` be called once in each wait for another process that is at work on the same
/// database, when it has taken a second; null: nobody is told. For the whole process, to be called
/// before a database is opened. `tell` is called on the thread that waits.
VEMORA_API void on_long_wait(void (*tell)() noexcept) noexcept;

}  // namespace kuv::vemora::embedded_server
