// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "embedded_server/persistent/watched_files.h"

#include <sqlite3.h>

#include <atomic>
#include <limits>
#include <new>

namespace kuv::test {
namespace {

std::atomic<int> refused_locks{0};
std::atomic<int> syncs_to_fail{0};
std::atomic<bool> cuts_fail{false};
std::atomic<bool> has_shared_memory{true};

/// A file of ours, with the real one behind it in the same piece of memory.
struct Watched_File : sqlite3_file {
  sqlite3_file* real() { return reinterpret_cast<sqlite3_file*>(this + 1); }
};

sqlite3_file* real(sqlite3_file* file) {
  return static_cast<Watched_File*>(file)->real();
}

/// Calls the same method of the real file.
template <auto method, class... Arguments>
int forward(sqlite3_file* file, Arguments... arguments) {
  return (real(file)->pMethods->*method)(real(file), arguments...);
}

/// The same of a lock.
template <auto method, class... Arguments>
int lock(sqlite3_file* file, Arguments... arguments) {
  const int code = forward<method>(file, arguments...);
  refused_locks += code == SQLITE_BUSY ? 1 : 0;
  return code;
}

int sync(sqlite3_file* file, int flags) {
  if (syncs_to_fail > 0) {
    --syncs_to_fail;
    return SQLITE_IOERR_FSYNC;
  }
  return forward<&sqlite3_io_methods::xSync>(file, flags);
}

int cut(sqlite3_file* file, sqlite3_int64 size) {
  return cuts_fail ? SQLITE_IOERR_TRUNCATE : forward<&sqlite3_io_methods::xTruncate>(file, size);
}

void put_shared_memory_in_order(sqlite3_file* file) {
  real(file)->pMethods->xShmBarrier(real(file));
}

sqlite3_io_methods methods_of(int version) {
  using Methods = sqlite3_io_methods;
  Methods methods{};
  methods.iVersion = version;
  methods.xClose = &forward<&Methods::xClose>;
  methods.xRead = &forward<&Methods::xRead, void*, int, sqlite3_int64>;
  methods.xWrite = &forward<&Methods::xWrite, const void*, int, sqlite3_int64>;
  methods.xTruncate = &cut;
  methods.xSync = &sync;
  methods.xFileSize = &forward<&Methods::xFileSize, sqlite3_int64*>;
  methods.xLock = &lock<&Methods::xLock, int>;
  methods.xUnlock = &forward<&Methods::xUnlock, int>;
  methods.xCheckReservedLock = &forward<&Methods::xCheckReservedLock, int*>;
  methods.xFileControl = &forward<&Methods::xFileControl, int, void*>;
  methods.xSectorSize = &forward<&Methods::xSectorSize>;
  methods.xDeviceCharacteristics = &forward<&Methods::xDeviceCharacteristics>;
  methods.xShmMap = &forward<&Methods::xShmMap, int, int, int, void volatile**>;
  methods.xShmLock = &lock<&Methods::xShmLock, int, int, int>;
  methods.xShmBarrier = &put_shared_memory_in_order;
  methods.xShmUnmap = &forward<&Methods::xShmUnmap, int>;
  methods.xFetch = &forward<&Methods::xFetch, sqlite3_int64, int, void**>;
  methods.xUnfetch = &forward<&Methods::xUnfetch, sqlite3_int64, void*>;
  return methods;
}

sqlite3_vfs* real_files() {
  static sqlite3_vfs* const files = sqlite3_vfs_find(nullptr);
  return files;
}

int open(sqlite3_vfs*, const char* name, sqlite3_file* file, int flags, int* flags_out) {
  static const sqlite3_io_methods whole = methods_of(3);
  static const sqlite3_io_methods without_shared_memory = methods_of(1);
  auto* const watched = new (file) Watched_File{};
  const int code = real_files()->xOpen(real_files(), name, watched->real(), flags, flags_out);
  watched->pMethods = watched->real()->pMethods == nullptr ? nullptr
                      : has_shared_memory                  ? &whole
                                                           : &without_shared_memory;
  return code;
}

sqlite3_vfs make_watched_files() {
  sqlite3_vfs files = *real_files();
  files.szOsFile += static_cast<int>(sizeof(Watched_File));
  files.pNext = nullptr;
  files.zName = "watched";
  files.xOpen = &open;
  return files;
}

}  // namespace

Watched_Files::Watched_Files() {
  static sqlite3_vfs files = make_watched_files();
  sqlite3_vfs_register(&files, 1);
  heal();
  has_shared_memory = true;
}

/// Files that are open stay watched until they are closed.
Watched_Files::~Watched_Files() {
  sqlite3_vfs_register(real_files(), 1);
}

int Watched_Files::refusals() const {
  return refused_locks;
}

void Watched_Files::fail_syncs(int count) {
  syncs_to_fail = count;
}

void Watched_Files::fail_syncs() {
  syncs_to_fail = std::numeric_limits<int>::max();
  cuts_fail = true;
}

void Watched_Files::heal() {
  syncs_to_fail = 0;
  cuts_fail = false;
}

void Watched_Files::forbid_shared_memory() {
  has_shared_memory = false;
}

}  // namespace kuv::test
