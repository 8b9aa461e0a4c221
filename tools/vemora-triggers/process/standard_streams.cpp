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
    // The lowest free number is the one that is missing. Opened for what it will not be used for:
    // nothing can be read from standard input, and what is written is not taken for delivered.
    if (::open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY) != stream) {
      std::abort();
    }
  }
}

}  // namespace kuv::vemora::tools
