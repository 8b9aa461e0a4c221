// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

namespace kuv::vemora::tools {

// The heap of a program that runs passes, which allocate and free millions of small blocks
// together: mimalloc's, or in a build without it the C library's. The allocator is chosen for a
// whole process, so only programs link this; a library uses what the process that loads it has
// chosen.

/// To be called once, before the first pass.
void set_up_heap();

/// Gives the memory that is free back to the system. For benchmarks: whatever is measured next
/// begins with an empty heap.
void trim_heap();

}  // namespace kuv::vemora::tools
