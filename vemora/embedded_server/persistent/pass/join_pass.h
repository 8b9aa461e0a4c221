// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <memory>
#include <utility>

#include "vemora/embedded_server/persistent/pass/pass.h"

namespace kuv::vemora::embedded_server {

/// Runs an operation that only reads in the pass that is open on this thread, or in one of its own.
template <class Operation>
auto read(const std::shared_ptr<Database>& database, Operation operation) {
  if (Pass* const pass = Pass::current(*database)) {
    return pass->run(std::move(operation));
  }
  Pass pass(database, Pass::Purpose::single_read);
  return pass.run(std::move(operation));
}

/// The same for one that writes; on its own it is committed before this returns.
template <class Operation>
auto write(const std::shared_ptr<Database>& database, Operation operation) {
  if (Pass* const pass = Pass::current(*database)) {
    pass->note_write();
    return pass->run(std::move(operation));
  }
  Pass pass(database, Pass::Purpose::single_write);
  if constexpr (std::is_void_v<decltype(pass.run(operation))>) {
    pass.run(std::move(operation));
    pass.commit_operation();
  } else {
    auto answer = pass.run(std::move(operation));
    pass.commit_operation();
    return answer;
  }
}

/// Runs the last write of a pass and commits the pass with it: what is told to the capture manager
/// and the pusher after that is stored. On its own it is like any other.
template <class Operation>
void write_and_commit_pass(const std::shared_ptr<Database>& database, Operation operation) {
  write(database, std::move(operation));
  if (Pass* const pass = Pass::current(*database)) {
    pass->commit();
  }
}

}  // namespace kuv::vemora::embedded_server
