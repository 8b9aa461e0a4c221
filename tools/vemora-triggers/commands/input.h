// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "tools/vemora-triggers/invocation/options.h"
#include "tools/vemora-triggers/render/faults.h"
#include "vemora/embedded_server/documents/json_document.h"
#include "vemora/embedded_server/host/trigger_host.h"

namespace kuv::vemora::tools {

/// Thrown for a document that cannot be read.
struct Unreadable_Document {
  std::string role;  ///< "inventory", "config" or "mapping"
  std::string path;
  embedded_server::Document_Fault fault;
  std::string line;

  Located_Fault located() const {
    return {role, path, fault, nullptr, line, std::nullopt, std::nullopt};
  }
};

/// Reads a document; throws Unreadable_Document.
embedded_server::Json_Document read_input(const Options& options, const std::string& role,
                                          const std::string& path);

/// A document that was taken before, however many values it has: whoever took it allowed them.
embedded_server::Json_Document document_taken_before(const std::string& text);

/// Warnings with the files that they stand in, as `locate` tells; both outlive the list.
Fault_List located(const std::vector<embedded_server::Document_Warning>& warnings,
                   const std::function<Located_Fault(const embedded_server::Check_Fault&)>& locate);

/// Where each id of a trigger configuration is given first.
class First_Ids {
 public:
  explicit First_Ids(const embedded_server::Json_Document& config);

  /// Nothing unless the fault is about an id that was given before.
  std::optional<embedded_server::Location> before(const embedded_server::Check_Fault& fault) const;

 private:
  const embedded_server::Json_Document& config_;
  std::map<std::uint64_t, std::size_t> indices_;  ///< of elements of the triggers, by id
};

/// The documents that `check`, `plan` and `apply` are given.
class Trigger_Documents {
 public:
  /// An empty mapping path stands for the stored mapping. Throws Unreadable_Document.
  Trigger_Documents(const Options& options, std::string config_path, std::string mapping_path);

  const embedded_server::Json_Document& config() const { return config_; }

  /// Null for the stored mapping.
  const embedded_server::Json_Document* mapping() const { return mapping_ ? &*mapping_ : nullptr; }

  /// Documents that were read before; the paths are shown to people.
  Trigger_Documents(std::string config_path, embedded_server::Json_Document config,
                    std::string mapping_path,
                    std::optional<embedded_server::Json_Document> mapping);

  /// Reads the same, and frees it only by ending the process, which frees everything at once:
  /// freeing a large document value by value takes a twentieth of a check.
  static const Trigger_Documents& read_for_good(const Options& options,
                                                const std::string& config_path,
                                                const std::string& mapping_path);

  /// A fault of these documents with its file and line. To be called by one thread at a time.
  Located_Fault locate(const embedded_server::Check_Fault& found) const;

 private:
  std::string config_path_;
  std::string mapping_path_;
  embedded_server::Json_Document config_;
  std::optional<embedded_server::Json_Document> mapping_;
  mutable std::optional<First_Ids> first_ids_;  ///< made when the first duplicate is located
};

}  // namespace kuv::vemora::tools
