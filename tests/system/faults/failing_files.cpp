// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only

// Counts the calls by which the process opens, changes and maps files, and lets one fail where the
// plan says so.

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdarg>
#include <cstdio>

#include "plan.h"
#include "recorded_files.h"

namespace {

bool call_fails() {
  if (faults::counts == nullptr || !faults::fails(faults::Kind::file, faults::counts->file_calls)) {
    return false;
  }
  errno = faults::plan.error;
  return true;
}

bool call_fails_on(int descriptor) {
  struct stat status {};
  return faults::counts != nullptr && fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode) &&
         call_fails();
}

template <class Function>
Function next(const char* name) {
  return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

mode_t mode_of(int flags, va_list& rest) {
  return (flags & O_CREAT) != 0 ? va_arg(rest, mode_t) : 0;
}

}  // namespace

extern "C" {

int open64(const char* path, int flags, ...) {
  static const auto real = next<int (*)(const char*, int, ...)>("open64");
  va_list rest;
  va_start(rest, flags);
  const mode_t mode = mode_of(flags, rest);
  va_end(rest);
  return call_fails() ? -1 : real(path, flags, mode);
}

int open(const char* path, int flags, ...) {
  va_list rest;
  va_start(rest, flags);
  const mode_t mode = mode_of(flags, rest);
  va_end(rest);
  return open64(path, flags, mode);
}

int openat(int folder, const char* path, int flags, ...) {
  static const auto real = next<int (*)(int, const char*, int, ...)>("openat");
  va_list rest;
  va_start(rest, flags);
  const mode_t mode = mode_of(flags, rest);
  va_end(rest);
  return call_fails() ? -1 : real(folder, path, flags, mode);
}

ssize_t write(int descriptor, const void* data, size_t size) {
  static const auto real = next<ssize_t (*)(int, const void*, size_t)>("write");
  if (call_fails_on(descriptor)) {
    return -1;
  }
  if (descriptor == STDOUT_FILENO) {
    faults::record_said();
  } else {
    faults::record_write(descriptor, data, static_cast<ssize_t>(size),
                         lseek(descriptor, 0, SEEK_CUR));
  }
  return real(descriptor, data, size);
}

ssize_t pwrite64(int descriptor, const void* data, size_t size, off64_t offset) {
  static const auto real = next<ssize_t (*)(int, const void*, size_t, off64_t)>("pwrite64");
  if (call_fails_on(descriptor)) {
    return -1;
  }
  const ssize_t written = real(descriptor, data, size, offset);
  faults::record_write(descriptor, data, written, offset);
  return written;
}

ssize_t pwrite(int descriptor, const void* data, size_t size, off_t offset) {
  return pwrite64(descriptor, data, size, offset);
}

int fsync(int descriptor) {
  static const auto real = next<int (*)(int)>("fsync");
  if (call_fails()) {
    return -1;
  }
  faults::record_sync(descriptor);
  return real(descriptor);
}

int fdatasync(int descriptor) {
  static const auto real = next<int (*)(int)>("fdatasync");
  if (call_fails()) {
    return -1;
  }
  faults::record_sync(descriptor);
  return real(descriptor);
}

int ftruncate64(int descriptor, off64_t size) {
  static const auto real = next<int (*)(int, off64_t)>("ftruncate64");
  if (call_fails_on(descriptor)) {
    return -1;
  }
  faults::record_cut(descriptor, size);
  return real(descriptor, size);
}

int ftruncate(int descriptor, off_t size) {
  return ftruncate64(descriptor, size);
}

int rename(const char* from, const char* to) {
  static const auto real = next<int (*)(const char*, const char*)>("rename");
  return call_fails() ? -1 : real(from, to);
}

int unlink(const char* path) {
  static const auto real = next<int (*)(const char*)>("unlink");
  if (call_fails()) {
    return -1;
  }
  faults::record_unlink(path);
  return real(path);
}

void* mmap64(void* wanted, size_t size, int protection, int flags, int descriptor, off64_t offset) {
  static const auto real = next<void* (*)(void*, size_t, int, int, int, off64_t)>("mmap64");
  const bool fault = descriptor >= 0 && call_fails_on(descriptor);
  return fault ? MAP_FAILED : real(wanted, size, protection, flags, descriptor, offset);
}

void* mmap(void* wanted, size_t size, int protection, int flags, int descriptor, off_t offset) {
  return mmap64(wanted, size, protection, flags, descriptor, offset);
}

}  // extern "C"
