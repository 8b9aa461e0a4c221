// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <boost/thread/lock_types.hpp>
#include <boost/thread/shared_mutex.hpp>

namespace kuv::vemora {

/// Finds out that something that the manager calls calls the manager: that call would wait forever
/// for the lock of its own thread. Builds with NDEBUG do not look.
class Call_Back_Check {
 public:
#ifdef NDEBUG
  Call_Back_Check(const boost::shared_mutex& /*mutex*/, const char* /*operation*/) {}
#else
  /// Throws Internal_Error<std::logic_error> if this thread is in an operation on that mutex.
  Call_Back_Check(const boost::shared_mutex& mutex, const char* operation);
  ~Call_Back_Check();
  Call_Back_Check(const Call_Back_Check&) = delete;
  Call_Back_Check& operator=(const Call_Back_Check&) = delete;

 private:
  const boost::shared_mutex& mutex_;
  const Call_Back_Check* const outer_;  ///< a collaborator may call another manager
#endif
};

/// The manager's lock, held as long as one of its operations runs.
template <class Lock>
class Manager_Lock {
 public:
  Manager_Lock(boost::shared_mutex& mutex, const char* operation)
      : check_(mutex, operation), lock_(mutex) {}

 private:
  Call_Back_Check check_;
  Lock lock_;
};

using Pass_Lock = Manager_Lock<boost::unique_lock<boost::shared_mutex>>;
using Read_Lock = Manager_Lock<boost::shared_lock<boost::shared_mutex>>;

}  // namespace kuv::vemora
