// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <cstdint>
#include <exception>
#include <map>
#include <memory>
#include <vector>

#include "vemora/platform/repositories/repository.h"

namespace kuv::test {

/// Records by id, and every id that was asked for, in order.
template <class Record>
struct Fake_Table {
  std::map<std::uint64_t, std::shared_ptr<Record>> records;
  std::vector<std::uint64_t> asked;
  std::exception_ptr fault;  ///< thrown by every look-up, where set

  std::shared_ptr<Record> get(std::uint64_t id) {
    asked.push_back(id);
    if (fault) {
      std::rethrow_exception(fault);
    }
    const auto found = records.find(id);
    return found == records.end() ? nullptr : found->second;
  }
};

/// The part of a database that the parser reads.
struct Fake_Database {
  Fake_Table<vemora::server> servers;
  Fake_Table<vemora::schedule> schedules;
};

/// A repository over that database, which must outlive it. Every operation other than the two
/// look-ups is none of the parser's business and throws std::logic_error.
std::shared_ptr<vemora::Repository> make_fake_repository(Fake_Database& database);

}  // namespace kuv::test
