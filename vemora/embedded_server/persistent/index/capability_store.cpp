// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/persistent/index/capability_store.h"

#include <fmt/format.h>

#include <boost/property_tree/json_parser.hpp>
#include <sstream>

#include "rows-odb.h"
#include "vemora/embedded_server/persistent/database_error.h"
#include "vemora/embedded_server/persistent/index/row_reader.h"
#include "vemora/embedded_server/texts/json_nesting.h"

namespace kuv::vemora::embedded_server {
namespace {

std::shared_ptr<const Capability_Store::Tree> parse(std::uint64_t camera_id,
                                                    const std::string& text) {
  if (is_nested_too_deeply(text)) {
    throw Database_Error(fmt::format(
        "the capability document of camera {} is corrupt: nested more than {} levels deep",
        camera_id, deepest_nesting));
  }
  auto tree = std::make_shared<Capability_Store::Tree>();
  std::istringstream stream(text);
  try {
    boost::property_tree::read_json(stream, *tree);
  } catch (const boost::property_tree::json_parser_error& error) {
    throw Database_Error(fmt::format("the capability document of camera {} is corrupt: {}",
                                     camera_id, error.what()));
  }
  return tree;
}

}  // namespace

std::shared_ptr<const Capability_Store::Tree> Capability_Store::tree(std::uint64_t camera_id) {
  std::shared_ptr<const Tree> found;
  guard_([&] {
    // Taken behind what the guard waits for, so that nobody holds it while waiting for the
    // database.
    const std::lock_guard<std::mutex> lock(mutex_);
    if (Document* const document = find(camera_id)) {
      parse_once(camera_id, *document);
      found = document->tree;
    }
  });
  return found;
}

bool Capability_Store::is_readable(std::uint64_t camera_id) {
  const std::lock_guard<std::mutex> lock(mutex_);
  Document* const document = find(camera_id);
  if (document == nullptr) {
    return true;
  }
  if (!document->is_damaged) {
    try {
      parse_once(camera_id, *document);
    } catch (const Database_Error&) {
      document->is_damaged = true;
    }
  }
  return !document->is_damaged;
}

Capability_Store::Document* Capability_Store::find(std::uint64_t camera_id) {
  if (!loaded_) {
    load();
  }
  const auto document_id = document_ids_.find(camera_id);
  const auto document =
      document_id == document_ids_.end() ? documents_.end() : documents_.find(document_id->second);
  return document == documents_.end() ? nullptr : &document->second;
}

void Capability_Store::parse_once(std::uint64_t camera_id, Document& document) {
  if (!document.tree) {
    document.tree = parse(camera_id, document.text);
  }
}

void Capability_Store::load() {
  for_each_row<rows::Camera_Capability>(
      database_, "camera_id",
      [&](const rows::Camera_Capability& row) { document_ids_[row.camera_id] = row.document_id; });
  for_each_row<rows::Capability_Text>(database_, "id", [&](const rows::Capability_Text& row) {
    documents_[row.id].text = row.text;
  });
  loaded_ = true;
}

}  // namespace kuv::vemora::embedded_server
