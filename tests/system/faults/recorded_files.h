// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <sys/types.h>

#include <cstddef>

namespace faults {

// What a run does to files, in its order, appended to the file that FAULT_RECORD names: what a
// power cut may leave of it is made from that. Each entry: a letter, the size of the file's name
// and the name, an offset and a size of eight bytes each, and of a write the bytes.

void record_write(int descriptor, const void* data, ssize_t size, off_t offset);
void record_cut(int descriptor, off_t size);
void record_sync(int descriptor);
void record_unlink(const char* path);

/// Something was written to standard output.
void record_said();

}  // namespace faults
