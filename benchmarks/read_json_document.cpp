// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only

// Reads a document with the JSON library, and does nothing with it: what any program that takes
// such a document has to do.

#include <json/reader.h>

#include <fstream>
#include <iostream>
#include <memory>
#include <string>

int main(int count, char** arguments) {
  if (count != 2) {
    std::cerr << "usage: read_json_document FILE\n";
    return 64;
  }
  std::ifstream file(arguments[1], std::ios::binary | std::ios::ate);
  std::string text(static_cast<std::size_t>(file.tellg()), '\0');
  file.seekg(0).read(text.data(), static_cast<std::streamsize>(text.size()));
  const std::unique_ptr<Json::CharReader> reader(Json::CharReaderBuilder().newCharReader());
  Json::Value document;
  if (!file || !reader->parse(text.data(), text.data() + text.size(), &document, nullptr)) {
    std::cerr << arguments[1] << " cannot be read, or is no JSON\n";
    return 1;
  }
  std::cout << document.size() << '\n';
  return 0;
}
