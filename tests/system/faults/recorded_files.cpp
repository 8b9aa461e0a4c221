// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "recorded_files.h"

#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "plan.h"

namespace faults {
namespace {

const char* record_path() {
  static const char* const path = std::getenv("FAULT_RECORD");
  return counts == nullptr ? nullptr : path;
}

/// Without the functions that are watched.
void append(const std::string& entry) {
  const long file =
      syscall(SYS_openat, AT_FDCWD, record_path(), O_WRONLY | O_CREAT | O_APPEND, 0600);
  if (file < 0 ||
      syscall(SYS_write, file, entry.data(), entry.size()) != static_cast<long>(entry.size())) {
    std::abort();
  }
  syscall(SYS_close, file);
}

std::string number(std::uint64_t value) {
  return std::string(reinterpret_cast<const char*>(&value), sizeof value);
}

void add(char kind, const char* path, std::uint64_t offset, std::uint64_t size,
         const std::string& data = "") {
  const char* const slash = std::strrchr(path, '/');
  const std::string name = slash == nullptr ? path : slash + 1;
  append(kind + number(name.size()) + name + number(offset) + number(size) + data);
}

void add(char kind, int descriptor, std::uint64_t offset, std::uint64_t size,
         const std::string& data = "") {
  char link[64];
  std::snprintf(link, sizeof link, "/proc/self/fd/%d", descriptor);
  char path[4096];
  const ssize_t length = readlink(link, path, sizeof path - 1);
  if (length > 0) {
    path[length] = '\0';
    add(kind, path, offset, size, data);
  }
}

}  // namespace

void record_write(int descriptor, const void* data, ssize_t size, off_t offset) {
  if (record_path() != nullptr && size > 0) {
    add('W', descriptor, static_cast<std::uint64_t>(offset), static_cast<std::uint64_t>(size),
        std::string(static_cast<const char*>(data), static_cast<std::size_t>(size)));
  }
}

void record_cut(int descriptor, off_t size) {
  if (record_path() != nullptr) {
    add('T', descriptor, 0, static_cast<std::uint64_t>(size));
  }
}

void record_sync(int descriptor) {
  if (record_path() != nullptr) {
    add('S', descriptor, 0, 0);
  }
}

void record_unlink(const char* path) {
  if (record_path() != nullptr) {
    add('U', path, 0, 0);
  }
}

void record_said() {
  if (record_path() != nullptr) {
    add('O', "standard output", 0, 0);
  }
}

}  // namespace faults
