// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/operations/warnings/found_warnings.h"

#include <algorithm>
#include <utility>

#include "vemora/embedded_server/texts/characters.h"

namespace kuv::vemora::operations {
namespace {

using embedded_server::Document_Warning;
using embedded_server::Json_Document;

constexpr std::string_view not_storable = "not-storable";
constexpr std::string_view not_utf8 = "not-utf8";
constexpr std::size_t most_quoted_letters = 100;

}  // namespace

void Found_Warnings::in_config(std::string_view code, const Json::Value& value, Subject subject,
                               std::string message) {
  at_offset(code, documents_.config, static_cast<std::size_t>(value.getOffsetStart()), subject,
            std::move(message));
}

void Found_Warnings::in_mapping(std::string_view code, const Json::Value& value, Subject subject,
                                std::string message) {
  at_offset(code, documents_.mapping, static_cast<std::size_t>(value.getOffsetStart()), subject,
            std::move(message));
}

void Found_Warnings::at_key(const Json_Document& document, const Json::Value& member,
                            Subject subject, std::string message) {
  at_offset("unknown-key", document, document.key_offset(member), subject, std::move(message));
}

void Found_Warnings::at_offset(std::string_view code, const Json_Document& document,
                               std::size_t offset, Subject subject, std::string message) {
  found_.push_back({&document == &documents_.mapping, offset, code, subject, std::move(message)});
}

std::vector<Document_Warning> Found_Warnings::take() {
  std::stable_sort(found_.begin(), found_.end(), [](const Found& left, const Found& right) {
    return std::make_tuple(place_of(left), left.code) <
           std::make_tuple(place_of(right), right.code);
  });
  // Of a text that cannot be stored since it is no UTF-8, once is enough.
  const auto twice = [](const Found& first, const Found& second) {
    return place_of(first) == place_of(second) && first.code == not_storable &&
           second.code == not_utf8;
  };
  found_.erase(std::unique(found_.begin(), found_.end(), twice), found_.end());
  std::vector<Document_Warning> warnings;
  warnings.reserve(found_.size());
  embedded_server::Text_Position last_in_config;
  embedded_server::Text_Position last_in_mapping;
  for (Found& found : found_) {
    warnings.push_back(
        located(std::move(found), found.in_mapping ? last_in_mapping : last_in_config));
  }
  found_.clear();
  return warnings;
}

std::tuple<bool, std::size_t> Found_Warnings::place_of(const Found& found) {
  return {found.in_mapping, found.offset};
}

Document_Warning Found_Warnings::located(Found&& found,
                                         embedded_server::Text_Position& last) const {
  const Json_Document& document = found.in_mapping ? documents_.mapping : documents_.config;
  return {std::string(found.code),
          {found.in_mapping ? "mapping" : "config",
           {std::move(found.message), document.locate_offset(found.offset, last)},
           found.subject.index,
           found.subject.id}};
}

std::string in_quotes(std::string_view text) {
  const std::string_view shown = embedded_server::first_characters(text, most_quoted_letters);
  std::string result = "\"";
  result += shown;
  result += shown.size() < text.size() ? "...\"" : "\"";
  return result;
}

}  // namespace kuv::vemora::operations
