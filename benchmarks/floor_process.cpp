// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "benchmarks/floor_process.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <filesystem>
#include <stdexcept>

namespace kuv::benchmarks {
namespace {

struct Pipe {
  int reading_end = -1;
  int writing_end = -1;
};

/// Closed where another program begins.
Pipe make_pipe() {
  std::array<int, 2> ends{};
  if (pipe2(ends.data(), O_CLOEXEC) != 0) {
    throw std::runtime_error("no pipe to the floors");
  }
  return {ends[0], ends[1]};
}

}  // namespace

Floor_Process::Floor_Process(const std::string& place) {
  const Pipe to = make_pipe();
  const Pipe from = make_pipe();
  const std::string program =
      std::filesystem::read_symlink("/proc/self/exe").replace_filename("floors");
  std::array<char*, 3> arguments{const_cast<char*>(program.c_str()),
                                 const_cast<char*>(place.c_str()), nullptr};
  posix_spawn_file_actions_t streams;
  posix_spawn_file_actions_init(&streams);
  posix_spawn_file_actions_adddup2(&streams, to.reading_end, STDIN_FILENO);
  posix_spawn_file_actions_adddup2(&streams, from.writing_end, STDOUT_FILENO);
  const int fault =
      posix_spawn(&process_, program.c_str(), &streams, nullptr, arguments.data(), environ);
  posix_spawn_file_actions_destroy(&streams);
  close(to.reading_end);
  close(from.writing_end);
  requests_ = fdopen(to.writing_end, "w");
  answers_ = fdopen(from.reading_end, "r");
  if (fault != 0) {
    throw std::runtime_error("cannot run " + program);
  }
}

Floor_Process::~Floor_Process() {
  std::fclose(requests_);  // which ends it
  std::fclose(answers_);
  waitpid(process_, nullptr, 0);
}

double Floor_Process::ask(const std::string& request) {
  double seconds = 0;
  std::fprintf(requests_, "%s\n", request.c_str());
  if (std::fflush(requests_) != 0 || std::fscanf(answers_, "%lf", &seconds) != 1) {
    throw std::runtime_error("the floors are gone");
  }
  return seconds;
}

}  // namespace kuv::benchmarks
