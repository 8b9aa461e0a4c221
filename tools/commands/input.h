#pragma once

#include <optional>
#include <string>
#include <utility>

#include "vemora/embedded_server/host/json_document.h"

namespace kuv::vemora::tools {

/// A document that could not be read, with what it was to be.
struct Unreadable_Document {
  std::string role;  ///< "inventory", "config" or "mapping"
  std::string path;
  embedded_server::Document_Fault fault;
  std::string line;
};

/// Reads a document; throws Unreadable_Document.
inline embedded_server::Json_Document read_input(const std::string& role, const std::string& path) {
  try {
    return embedded_server::Json_Document::read(path);
  } catch (const embedded_server::Document_Error& error) {
    throw Unreadable_Document{role, path, {error.what(), error.location}, error.line};
  }
}

/// The same for one that may be left out.
inline std::optional<embedded_server::Json_Document> read_optional_input(const std::string& role,
                                                                         const std::string& path) {
  return path.empty() ? std::nullopt : std::make_optional(read_input(role, path));
}

inline const embedded_server::Json_Document* pointer_to(
    const std::optional<embedded_server::Json_Document>& document) {
  return document ? &*document : nullptr;
}

}  // namespace kuv::vemora::tools
