// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only

// Runs the fuzz target once on every file of a folder, as a fuzzer does before it starts.
//
//   vemora_replay_corpus FOLDER

#include <boost/log/core.hpp>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

int main(int count, char** arguments) {
  if (count != 2) {
    std::cerr << "usage: vemora_replay_corpus FOLDER\n";
    return 64;
  }
  boost::log::core::get()->set_logging_enabled(false);
  int inputs = 0;
  for (const auto& file : std::filesystem::directory_iterator(arguments[1])) {
    std::cout << file.path().filename().string() << std::endl;
    std::ifstream stream(file.path(), std::ios::binary);
    const std::string text{std::istreambuf_iterator<char>(stream), {}};
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(text.data()), text.size());
    ++inputs;
  }
  std::cout << inputs << " inputs\n";
  return inputs > 0 ? 0 : 1;
}
