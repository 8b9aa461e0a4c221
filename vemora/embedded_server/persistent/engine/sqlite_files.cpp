// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/persistent/engine/sqlite_files.h"

#include <fmt/format.h>
#include <sqlite3.h>

#include <array>
#include <cerrno>
#include <cstdint>
#include <filesystem>
#include <string_view>

#include "vemora/embedded_server/persistent/database_error.h"

namespace kuv::vemora::embedded_server {
namespace {

// Where the head of an SQLite file says what; its numbers have the most significant byte first.
constexpr std::size_t head_size = 100;
constexpr std::size_t place_of_read_version = 19;
constexpr std::size_t place_of_application_id = 68;
constexpr unsigned char version_with_log = 2;
constexpr std::string_view first_words("SQLite format 3\0", 16);

using Head = std::array<unsigned char, head_size>;

/// Through SQLite's own descriptor: closing another one would give up the locks that this process
/// has on the file.
bool read_head(sqlite3* handle, Head& head) {
  sqlite3_file* file = nullptr;
  sqlite3_file_control(handle, "main", SQLITE_FCNTL_FILE_POINTER, &file);
  return file != nullptr && file->pMethods != nullptr &&
         file->pMethods->xRead(file, head.data(), static_cast<int>(head.size()), 0) == SQLITE_OK;
}

bool is_empty(sqlite3* handle) {
  sqlite3_file* file = nullptr;
  sqlite3_file_control(handle, "main", SQLITE_FCNTL_FILE_POINTER, &file);
  sqlite3_int64 size = 0;
  return file != nullptr && file->pMethods != nullptr &&
         file->pMethods->xFileSize(file, &size) == SQLITE_OK && size == 0;
}

std::int64_t application_id_in(const Head& head) {
  std::int64_t number = 0;
  for (std::size_t place = 0; place < 4; ++place) {
    number = number * 256 + head[place_of_application_id + place];
  }
  return number;
}

/// SQLite would make, write or empty whatever file the link names.
void require_no_link(const std::string& path) {
  if (std::filesystem::is_symlink(path)) {
    throw Database_Error(fmt::format("{} is a symbolic link; remove it", path));
  }
}

}  // namespace

SQLite_Header read_sqlite_header(sqlite3* handle) {
  Head head{};
  SQLite_Header answer;
  if (!read_head(handle, head)) {
    answer.is_foreign = !is_empty(handle);
    return answer;
  }
  const bool known = std::string_view(reinterpret_cast<const char*>(head.data()),
                                      first_words.size()) == first_words;
  const std::int64_t application = application_id_in(head);
  answer.is_ours = known && application == sqlite_application_id;
  // An `init` that was cut short leaves a database that nobody has marked yet.
  answer.is_foreign = !known || (application != sqlite_application_id && application != 0);
  answer.uses_log = known && head[place_of_read_version] == version_with_log;
  return answer;
}

std::string as_sqlite_name(const std::string& path) {
  return std::filesystem::path(path).is_absolute() ? path : "./" + path;
}

std::string as_sqlite_uri(const std::string& path, const std::string& query) {
  std::string uri = "file:";
  for (const char letter : as_sqlite_name(path)) {
    const bool special = letter == '%' || letter == '?' || letter == '#';
    uri += special ? fmt::format("%{:02X}", static_cast<unsigned>(letter)) : std::string(1, letter);
  }
  return uri + '?' + query;
}

void keep_log(sqlite3* handle) {
  int keep = 1;
  sqlite3_file_control(handle, "main", SQLITE_FCNTL_PERSIST_WAL, &keep);
  // With a limit, whatever it is, the last one empties the log.
  sqlite3_exec(handle, "PRAGMA journal_size_limit=0", nullptr, nullptr, nullptr);
}

SQLite_Files::SQLite_Files(const std::string& path)
    : path_(std::filesystem::absolute(path).string()),
      read_only_(status_of(path) && !may_write(path)) {}

std::vector<std::string> SQLite_Files::log_files() const {
  return {file() + "-wal", file() + "-shm"};
}

void SQLite_Files::make_log() const {
  const auto model = status_of(path_);
  if (!model) {
    return;
  }
  for (const std::string& name : log_files()) {
    if (status_of(name)) {
      continue;
    }
    if (read_only_) {
      throw Database_Error(
          fmt::format("this user may only read it, and {} is not there, which that takes; any "
                      "command of a user who may write it makes that file",
                      name));
    }
    if (!create_like(name, *model) && errno != EEXIST) {
      throw Database_Error(fmt::format("cannot make {}: {}", name, reason_of(errno)));
    }
  }
}

void SQLite_Files::note_opened(sqlite3* handle) {
  const SQLite_Header header = read_sqlite_header(handle);
  if (!header.is_foreign) {
    keep_log(handle);
  }
  const auto found = identity_of(path_);
  int moved = 0;  // since it was opened
  sqlite3_file_control(handle, "main", SQLITE_FCNTL_HAS_MOVED, &moved);
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    if (found && moved == 0 && !opened_) {
      opened_ = found;
    }
  }
  require_in_place();
  if (!header.is_foreign) {
    for (const char* const suffix : {"-wal", "-shm", "-journal"}) {
      require_no_link(file() + suffix);
    }
  }
  if (header.uses_log && !header.is_foreign) {
    note_log();
    make_log();
  }
}

void SQLite_Files::require_in_place() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  const auto found = identity_of(path_);
  if (!found || !opened_ || !(*found == *opened_)) {
    throw Database_Error(
        "the file that was opened is not there any more: it was deleted, moved or replaced");
  }
}

void SQLite_Files::require_writable() const {
  if (read_only_) {
    throw Database_Error("this user may only read it");
  }
  for (const std::string& name : log_files()) {
    const auto status = status_of(name);
    if (status && !may_write(name)) {
      throw Database_Error(
          fmt::format("this user may not write {}, which belongs to user {}: give it the owner and "
                      "the mode of the database",
                      name, status->st_uid));
    }
  }
}

}  // namespace kuv::vemora::embedded_server
