// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <chrono>
#include <string>

#include "vemora/embedded_server/persistent/engine/descriptor.h"

namespace kuv::vemora::embedded_server {

/// A lock that processes, and threads of one, hold by turns: an open file, locked. The kernel lets
/// go of it when the holder dies, however it dies.
class File_Lock {
 public:
  /// Waits for the lock; throws Database_Error when it is not to be had within `wait`. The file is
  /// made where it is missing; its mode and, as far as this user may, its owner are those of
  /// `model`, the file that it stands for.
  File_Lock(const std::string& path, const std::string& model, std::chrono::milliseconds wait);

 private:
  Descriptor file_;
};

}  // namespace kuv::vemora::embedded_server
