// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only

// Reads a file line by line with the JSON library, and does nothing with it: what any reader of
// events has to do.

#include <json/reader.h>

#include <fstream>
#include <iostream>
#include <memory>
#include <string>

int main(int count, char** arguments) {
  if (count != 2) {
    std::cerr << "usage: read_json_lines FILE\n";
    return 64;
  }
  std::ifstream file(arguments[1]);
  const std::unique_ptr<Json::CharReader> reader(Json::CharReaderBuilder().newCharReader());
  std::string line;
  std::size_t lines = 0;
  while (std::getline(file, line)) {
    Json::Value value;
    if (!reader->parse(line.data(), line.data() + line.size(), &value, nullptr)) {
      std::cerr << "line " << lines + 1 << " is no JSON\n";
      return 1;
    }
    ++lines;
  }
  std::cout << lines << '\n';
  return 0;
}
