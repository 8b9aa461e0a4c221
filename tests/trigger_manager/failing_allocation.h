// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

namespace kuv::test {

// For a program that runs out of memory at a chosen moment; each thread for itself.

/// One allocation of a single object throws std::bad_alloc, when so many have succeeded; those
/// after it succeed again.
void fail_allocation_after(int successes);

/// Takes that back. Whether it had come to it.
bool allocation_has_failed();

}  // namespace kuv::test
