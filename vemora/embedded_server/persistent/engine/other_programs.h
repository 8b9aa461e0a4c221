// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <chrono>
#include <string>

namespace kuv::vemora::embedded_server {

// What people are told when other programs are in the way, whatever the engine.

/// Of a pass that waited that long for another one.
std::string at_work_elsewhere(std::chrono::milliseconds waited);

/// Of a statement that waited that long for a lock.
std::string locked_by_another_program(std::chrono::milliseconds waited);

/// Of a pass whose state of the site is outdated.
std::string changed_by_another_program();

}  // namespace kuv::vemora::embedded_server
