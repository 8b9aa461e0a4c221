// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "tools/vemora-triggers/process/standard_streams.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>
#include <initializer_list>

namespace kuv::vemora::tools {

void occupy_missing_standard_streams() {
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (::fcntl(stream, F_GETFD) != -1) {
      continue;
    }
    // open() returns the lowest free descriptor, which is the missing one. The mode is the opposite
    // of what the stream is for, so that reading and writing it fail.
    if (::open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY) != stream) {
      std::abort();
    }
  }
}

}  // namespace kuv::vemora::tools
