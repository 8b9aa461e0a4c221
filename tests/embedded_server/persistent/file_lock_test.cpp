// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>

#include "embedded_server/persistent/site_at_work.h"

// The operating system may refuse a lock for other reasons than that somebody holds it. The
// function stands in front of the C library's, which it calls unless it is to fail.

namespace {

/// What the next attempts to lock a file fail with, each once.
thread_local std::vector<int> failures;

}  // namespace

extern "C" int flock(int descriptor, int operation) noexcept {
  static auto* const lock = reinterpret_cast<int (*)(int, int)>(dlsym(RTLD_NEXT, "flock"));
  if (failures.empty()) {
    return lock(descriptor, operation);
  }
  errno = failures.back();
  failures.pop_back();
  return -1;
}

namespace kuv::test {
namespace {

using testing::IsEmpty;

class File_Locks : public testing::Test, public Database_Fixture {
 protected:
  File_Locks() : Database_Fixture({"sqlite", [] { return std::make_unique<SQLite_Place>(); }}) {
    database();
  }
  ~File_Locks() override { failures.clear(); }

  std::string complaint_of_a_pass() {
    return complaint_of([this] { Pass_Scope(database(), server_id); });
  }

  std::string lock_file() const { return location() + ".lock"; }

  bool somebody_holds_the_lock() const {
    const int descriptor = ::open(lock_file().c_str(), O_RDWR);
    const bool held = flock(descriptor, LOCK_EX | LOCK_NB) != 0;
    ::close(descriptor);
    return held;
  }
};

TEST_F(File_Locks, that_cannot_be_opened_fail_a_pass) {
  std::filesystem::remove(lock_file());
  std::filesystem::create_directory(lock_file());

  EXPECT_EQ(complaint_of_a_pass(), "database " + location() + ": cannot open the lock file " +
                                       lock_file() + ": Is a directory");

  EXPECT_THAT(read_triggers(database()), IsEmpty());  // who only reads needs none
  std::filesystem::remove(lock_file());
  EXPECT_EQ(complaint_of_a_pass(), "no complaint");
}

TEST_F(File_Locks, that_the_system_refuses_fail_a_pass) {
  failures = {ENOLCK};

  EXPECT_EQ(complaint_of_a_pass(),
            "database " + location() + ": cannot lock " + lock_file() + ": No locks available");

  EXPECT_EQ(complaint_of_a_pass(), "no complaint");
}

TEST_F(File_Locks, are_held_from_the_look_at_a_site_to_the_storing_of_its_inventory) {
  bool held = false;
  embedded_server::store_inventory(database(), [&]() -> const embedded_server::Inventory* {
    held = somebody_holds_the_lock();
    return nullptr;
  });

  EXPECT_TRUE(held);
  EXPECT_FALSE(somebody_holds_the_lock());
}

TEST_F(File_Locks, are_asked_for_again_after_a_signal) {
  failures = {EINTR, EINTR};

  EXPECT_EQ(complaint_of_a_pass(), "no complaint");

  EXPECT_THAT(failures, IsEmpty());
}

}  // namespace
}  // namespace kuv::test
