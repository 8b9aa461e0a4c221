// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only

// Measures floors with the allocator of the C library, for whole_passes, which has another one.
//
//     floors FOLDER|URL-PREFIX
//
// Each line of standard input is a request, and is answered by a line with the seconds:
//     rows LOCATION   takes the rows of that database, in no time
//     write           writes them
//     read            reads what was written

#include <fmt/format.h>

#include <iostream>

#include "benchmarks/floor_of_place.h"
#include "benchmarks/run_program.h"

namespace kuv::benchmarks {
namespace {

using vemora::embedded_server::Database;

constexpr std::string_view rows_of = "rows ";

int run(const std::vector<std::string>& arguments) {
  if (arguments.size() != 1) {
    std::cerr << "floors FOLDER|URL-PREFIX\n";
    return 64;
  }
  const Floor_Place place(arguments[0]);
  Plain_Rows rows;
  for (std::string request; std::getline(std::cin, request);) {
    double seconds = 0;
    if (request.rfind(rows_of, 0) == 0) {
      rows = read_plain_rows(
          Database::open(request.substr(rows_of.size()), Database::Open_Mode::existing));
    } else if (request == "write") {
      seconds = place.write(rows);
    } else {
      vemora::Trigger_Config_State state;
      seconds = place.read(state);
    }
    std::cout << fmt::format("{}\n", seconds) << std::flush;
  }
  return 0;
}

}  // namespace
}  // namespace kuv::benchmarks

int main(int count, char** arguments) {
  return kuv::benchmarks::run_program("floors", count, arguments, kuv::benchmarks::run);
}
