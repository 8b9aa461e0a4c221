// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only

// Preloaded into the tool by the crash tests: counts the calls by which it writes files and brings
// them to the disk, and kills the process at one of them, as an impatient administrator would. What
// was written stays, which a power cut would not grant: see tests/system/faults/power_cut_test.py.
//
//   KILL_AT_CALL=N     die at the N-th call; of a write, half is done by then
//   COUNT_CALLS_IN=F   write the number of calls into file F at the end

#include <dlfcn.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/types.h>
#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>

namespace {

std::atomic<long> calls{0};

long wanted() {
  static const char* const text = std::getenv("KILL_AT_CALL");
  return text == nullptr ? 0 : std::atol(text);
}

/// A folder too: what is synced there is which names it has.
bool is_file(int descriptor) {
  struct stat status {};
  return fstat(descriptor, &status) == 0 && (S_ISREG(status.st_mode) || S_ISDIR(status.st_mode));
}

/// True when this call is the one to die at.
bool is_last(int descriptor) {
  return is_file(descriptor) && ++calls == wanted();
}

[[noreturn]] void die() {
  kill(getpid(), SIGKILL);
  while (true) {
    pause();
  }
}

template <class Function>
Function next(const char* name) {
  return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

struct Report {
  ~Report() {
    const char* const path = std::getenv("COUNT_CALLS_IN");
    if (path == nullptr) {
      return;
    }
    const long total = calls;
    if (FILE* const file = std::fopen(path, "w")) {
      std::fprintf(file, "%ld\n", total);
      std::fclose(file);
    }
  }
} report;

}  // namespace

extern "C" {

ssize_t write(int descriptor, const void* data, size_t size) {
  static const auto real = next<ssize_t (*)(int, const void*, size_t)>("write");
  if (is_last(descriptor)) {
    (void)!real(descriptor, data, size / 2);
    die();
  }
  return real(descriptor, data, size);
}

ssize_t pwrite64(int descriptor, const void* data, size_t size, off64_t offset) {
  static const auto real = next<ssize_t (*)(int, const void*, size_t, off64_t)>("pwrite64");
  if (is_last(descriptor)) {
    (void)!real(descriptor, data, size / 2, offset);
    die();
  }
  return real(descriptor, data, size, offset);
}

ssize_t pwrite(int descriptor, const void* data, size_t size, off_t offset) {
  return pwrite64(descriptor, data, size, offset);
}

int fsync(int descriptor) {
  static const auto real = next<int (*)(int)>("fsync");
  if (is_last(descriptor)) {
    die();
  }
  return real(descriptor);
}

int fdatasync(int descriptor) {
  static const auto real = next<int (*)(int)>("fdatasync");
  if (is_last(descriptor)) {
    die();
  }
  return real(descriptor);
}

int ftruncate64(int descriptor, off64_t size) {
  static const auto real = next<int (*)(int, off64_t)>("ftruncate64");
  if (is_last(descriptor)) {
    die();
  }
  return real(descriptor, size);
}

int ftruncate(int descriptor, off_t size) {
  return ftruncate64(descriptor, size);
}

}  // extern "C"
