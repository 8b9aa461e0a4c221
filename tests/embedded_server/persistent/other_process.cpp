// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "embedded_server/persistent/other_process.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <stdexcept>
#include <system_error>
#include <utility>

namespace kuv::test {
namespace {

/// A pipe whose ends no other child inherits.
std::pair<int, int> make_pipe() {
  std::array<int, 2> ends{};
  if (::pipe2(ends.data(), O_CLOEXEC) != 0) {
    throw std::system_error(errno, std::generic_category(), "pipe");
  }
  return {ends[0], ends[1]};
}

}  // namespace

Other_Process::Other_Process(const std::string& location, std::chrono::milliseconds lock_wait) {
  const auto [its_input, our_output] = make_pipe();
  const auto [our_input, its_output] = make_pipe();
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, its_input, STDIN_FILENO);
  posix_spawn_file_actions_adddup2(&actions, its_output, STDOUT_FILENO);
  std::string program = VEMORA_DATABASE_USER;
  std::string place = location;
  std::string wait = std::to_string(lock_wait.count());
  std::array<char*, 4> arguments{program.data(), place.data(), wait.data(), nullptr};
  const int failed =
      ::posix_spawn(&process_, program.c_str(), &actions, nullptr, arguments.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  ::close(its_input);
  ::close(its_output);
  steps_ = ::fdopen(our_output, "w");
  answers_ = ::fdopen(our_input, "r");
  if (failed != 0) {
    throw std::system_error(failed, std::generic_category(), program);
  }
}

Other_Process::~Other_Process() {
  std::fclose(steps_);
  std::fclose(answers_);
  if (process_ > 0) {
    ::waitpid(process_, nullptr, 0);
  }
}

std::string Other_Process::ask(const std::string& step) {
  std::fputs((step + '\n').c_str(), steps_);
  std::fflush(steps_);
  std::string answer;
  int letter = 0;
  while ((letter = std::fgetc(answers_)) != EOF && letter != '\n') {
    answer += static_cast<char>(letter);
  }
  return letter == EOF ? "it is gone" : answer;
}

void Other_Process::kill() {
  ::kill(process_, SIGKILL);
  ::waitpid(process_, nullptr, 0);
  process_ = -1;
}

}  // namespace kuv::test
