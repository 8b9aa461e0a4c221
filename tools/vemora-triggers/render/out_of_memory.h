// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

namespace kuv::vemora::tools {

/// Prints that memory ran out, and what is stored, in the form of the command's outcome. Allocates
/// no memory. Errors of writing are ignored.
void print_out_of_memory(bool json, bool of_a_pass, const char* stored) noexcept;

}  // namespace kuv::vemora::tools
