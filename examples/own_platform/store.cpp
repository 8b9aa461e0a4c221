// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "store.h"

#include <fmt/format.h>
#include <json/reader.h>
#include <json/writer.h>

#include <cstdio>
#include <fstream>
#include <memory>
#include <stdexcept>
#include <utility>

namespace own_platform {

Store::Store(std::string file) : file_(std::move(file)) {
  std::ifstream stream(file_);
  if (stream) {
    stream >> document_;
  }
}

void Store::save() const {
  const std::string beside = file_ + ".new";
  {
    std::ofstream stream(beside);
    Json::StreamWriterBuilder builder;
    builder["indentation"] = "";
    builder["emitUTF8"] = true;
    const std::unique_ptr<Json::StreamWriter> writer(builder.newStreamWriter());
    writer->write(document_, &stream);
    stream.flush();
    if (!stream) {
      throw std::runtime_error("cannot write " + beside);
    }
  }
  if (std::rename(beside.c_str(), file_.c_str()) != 0) {
    throw std::runtime_error("cannot replace " + file_);
  }
}

Json::Value& Store::table(const std::string& name) {
  Json::Value& table = document_[name];
  if (table.isNull()) {
    table = Json::objectValue;
  }
  return table;
}

const Json::Value& Store::row(const std::string& name, std::uint64_t id) {
  const Json::Value& rows = table(name);
  return rows[key_of(id)];
}

std::uint64_t Store::unused_id(const std::string& name) {
  std::uint64_t id = 1;
  while (has(name, id)) {
    ++id;
  }
  return id;
}

std::string key_of(std::uint64_t id) {
  return fmt::format("{:020}", id);
}

std::uint64_t id_of(const std::string& key) {
  return std::stoull(key);
}

}  // namespace own_platform
