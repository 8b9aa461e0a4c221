// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <json/value.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

#include "vemora/embedded_server/documents/document_warning.h"
#include "vemora/embedded_server/host/document_judge.h"

namespace kuv::vemora::operations {

/// The trigger or association that a warning is about.
struct Subject {
  std::optional<std::size_t> index = std::nullopt;
  std::optional<std::uint64_t> id = std::nullopt;
};

/// The warnings of two documents, as they are found. Their places are looked up when all are there.
class Found_Warnings {
 public:
  explicit Found_Warnings(const embedded_server::Read_Documents& documents)
      : documents_(documents) {}

  // The place of a warning is that of a value, or of the key of a member, or an offset.
  void in_config(std::string_view code, const Json::Value& value, Subject subject,
                 std::string message);
  void in_mapping(std::string_view code, const Json::Value& value, Subject subject,
                  std::string message);
  void at_key(const embedded_server::Json_Document& document, const Json::Value& member,
              Subject subject, std::string message);
  void at_offset(std::string_view code, const embedded_server::Json_Document& document,
                 std::size_t offset, Subject subject, std::string message);

  /// In the order of the documents, the configuration first.
  std::vector<embedded_server::Document_Warning> take();

 private:
  struct Found {
    bool in_mapping;
    std::size_t offset;  ///< as Json::Value::getOffsetStart counts
    std::string_view code;
    Subject subject;
    std::string message;
  };

  static std::tuple<bool, std::size_t> place_of(const Found& found);

  embedded_server::Document_Warning located(Found&& found,
                                            embedded_server::Text_Position& last) const;

  const embedded_server::Read_Documents& documents_;
  std::vector<Found> found_;
};

/// A text of a document as messages quote it: not longer than anybody reads.
std::string in_quotes(std::string_view text);

}  // namespace kuv::vemora::operations
