// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include "vemora/platform/export.h"

namespace kuv::vemora::embedded_server {

/// Configures the C library's heap, where a program has no better one, for passes, which allocate
/// and free millions of small blocks together: freed blocks are joined with their neighbours at
/// once instead of being kept for later, except for a few of each size. To be called by programs
/// that run passes, before the first pass; a library should not do this to its process.
VEMORA_API void suit_heap_to_passes();

}  // namespace kuv::vemora::embedded_server
