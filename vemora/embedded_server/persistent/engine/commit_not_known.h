// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <string>

#include "vemora/embedded_server/persistent/database_error.h"

namespace kuv::vemora::embedded_server {

/// A commit of which nobody can know whether it was carried out, or will last.
class Commit_Not_Known : public Database_Error {
 public:
  /// What is known all the same.
  enum class Known {
    nothing,
    committed_here,  ///< but perhaps nowhere else: it is lost when another server takes over
  };

  explicit Commit_Not_Known(const std::string& why, Known known = Known::nothing)
      : Database_Error(why), known_(known) {}

  Known known() const { return known_; }

 private:
  Known known_;
};

/// What may have become of something that was to be committed, for people.
std::string fate_of(const std::string& what, Commit_Not_Known::Known known);

}  // namespace kuv::vemora::embedded_server
