#pragma once

#include "vemora/platform/export.h"

namespace kuv::vemora::embedded_server {

/// Sets the C library's heap up for passes, whose results are millions of small blocks that come
/// and go together: a block that is freed is joined with its neighbours at once, but for a few of
/// each size, not put by for later. For programs that run passes, before the first one; a library
/// has no business doing so.
VEMORA_API void suit_heap_to_passes();

}  // namespace kuv::vemora::embedded_server
