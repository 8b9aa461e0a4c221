// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

namespace kuv::vemora::tools {

// A sentence that says what is stored already, to be printed if the command fails later. It is kept
// apart from the outcome, so that it is available if there is no memory for an outcome.

/// `sentence` must exist as long as the program; empty if nothing is stored.
void note_stored(const char* sentence) noexcept;

const char* stored_note() noexcept;

}  // namespace kuv::vemora::tools
