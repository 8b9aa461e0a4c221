// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only

// Preloaded into a program: stops it at the start of main and runs it from there as often as it is
// asked to, each time in a process of its own, so that a run costs no loading of libraries.
//
//   FAULT_SERVER=R,W   descriptors: requests come from R, what became of a run is answered on W
//
// A request is its size in four bytes, and then texts, each ended by a NUL: the kind of fault (0
// none, 1 allocation, 2 file), the number of the call that fails, 1 where all behind it fail too,
// errno, the folder to run in, where standard output goes to, where standard error goes to, and the
// arguments from the program's name on. An answer is a line: the exit status, the signal (0: none),
// allocations, those by operator new, calls on files, calls that failed.

#include <dlfcn.h>
#include <execinfo.h>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <new>
#include <string>
#include <vector>

#include "plan.h"

namespace faults {

Plan plan;
Counts* counts = nullptr;

namespace {

/// Where the failing call came from, for whoever looks for the reason.
void print_trace() {
  static bool printing = false;
  if (printing || std::getenv("FAULT_TRACE") == nullptr) {
    return;
  }
  printing = true;
  void* frames[60];
  const int depth = backtrace(frames, 60);
  backtrace_symbols_fd(frames, depth, STDERR_FILENO);
  printing = false;
}

}  // namespace

bool fails(Kind kind, std::atomic<long>& counter) {
  const long number = ++counter;
  const bool is_one = plan.kind == kind && plan.at != 0 &&
                      (number == plan.at || (plan.for_good && number > plan.at));
  if (is_one) {
    ++counts->failed;
    print_trace();
  }
  return is_one;
}

}  // namespace faults

namespace {

using Main = int (*)(int, char**, char**);

constexpr unsigned longest_run_s = 60;  // longer than the tool waits for a lock

Main program = nullptr;

bool read_all(int from, void* data, std::size_t size) {
  auto* place = static_cast<char*>(data);
  while (size > 0) {
    const ssize_t count = read(from, place, size);
    if (count <= 0) {
      return false;
    }
    place += count;
    size -= static_cast<std::size_t>(count);
  }
  return true;
}

std::vector<std::string> next_request(int from) {
  std::uint32_t size = 0;
  if (!read_all(from, &size, sizeof size)) {
    return {};
  }
  std::string text(size, '\0');
  if (!read_all(from, text.data(), size)) {
    return {};
  }
  std::vector<std::string> fields;
  for (std::size_t place = 0; place < text.size(); place += fields.back().size() + 1) {
    fields.emplace_back(text.c_str() + place);
  }
  return fields;
}

void redirect(int stream, const std::string& path) {
  const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
  if (file < 0 || dup2(file, stream) < 0) {
    _exit(125);
  }
  close(file);
}

/// In a process of its own.
[[noreturn]] void run(const std::vector<std::string>& fields, faults::Counts* counts,
                      char** environ) {
  const rlimit no_core{0, 0};
  setrlimit(RLIMIT_CORE, &no_core);
  alarm(longest_run_s);
  if (chdir(fields[4].c_str()) != 0) {
    _exit(125);
  }
  redirect(STDOUT_FILENO, fields[5]);
  redirect(STDERR_FILENO, fields[6]);
  std::vector<char*> arguments;
  for (std::size_t place = 7; place < fields.size(); ++place) {
    arguments.push_back(const_cast<char*>(fields[place].c_str()));
  }
  arguments.push_back(nullptr);
  faults::plan = {static_cast<faults::Kind>(std::atoi(fields[0].c_str())),
                  std::atol(fields[1].c_str()), fields[2] == "1", std::atoi(fields[3].c_str())};
  faults::counts = counts;
  std::exit(program(static_cast<int>(arguments.size() - 1), arguments.data(), environ));
}

int serve(int, char**, char** environ) {
  int from = -1;
  int to = -1;
  if (std::sscanf(std::getenv("FAULT_SERVER"), "%d,%d", &from, &to) != 2) {
    return 125;
  }
  void* frames[1];
  backtrace(frames, 1);  // loads what it needs, outside of any run
  void* const shared = mmap(nullptr, sizeof(faults::Counts), PROT_READ | PROT_WRITE,
                            MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  while (true) {
    const std::vector<std::string> fields = next_request(from);
    if (fields.empty()) {
      return 0;
    }
    auto* const counts = new (shared) faults::Counts{};
    const pid_t child = fork();
    if (child == 0) {
      close(from);
      close(to);
      run(fields, counts, environ);
    }
    int status = 0;
    waitpid(child, &status, 0);
    dprintf(to, "%d %d %ld %ld %ld %ld\n", WIFEXITED(status) ? WEXITSTATUS(status) : -1,
            WIFSIGNALED(status) ? WTERMSIG(status) : 0, counts->allocations.load(),
            counts->by_operator_new.load(), counts->file_calls.load(), counts->failed.load());
  }
}

}  // namespace

extern "C" int __libc_start_main(Main wanted, int count, char** arguments, void (*begin)(),
                                 void (*end)(), void (*unload)(), void* stack_end) {
  using Start = int (*)(Main, int, char**, void (*)(), void (*)(), void (*)(), void*);
  const auto start = reinterpret_cast<Start>(dlsym(RTLD_NEXT, "__libc_start_main"));
  program = wanted;
  const bool asked = std::getenv("FAULT_SERVER") != nullptr;
  return start(asked ? &serve : wanted, count, arguments, begin, end, unload, stack_end);
}
