#include "vemora/operations/warnings/found_warnings.h"

#include <algorithm>
#include <tuple>
#include <utility>

#include "vemora/embedded_server/texts/letters.h"

namespace kuv::vemora::operations {
namespace {

using embedded_server::Document_Warning;
using embedded_server::Json_Document;

constexpr std::size_t most_quoted_letters = 100;

}  // namespace

void Found_Warnings::in_config(const char* code, const Json::Value& value, Subject subject,
                               std::string message) {
  at_offset(code, documents_.config, static_cast<std::size_t>(value.getOffsetStart()), subject,
            std::move(message));
}

void Found_Warnings::in_mapping(const char* code, const Json::Value& value, Subject subject,
                                std::string message) {
  at_offset(code, documents_.mapping, static_cast<std::size_t>(value.getOffsetStart()), subject,
            std::move(message));
}

void Found_Warnings::at_key(const Json_Document& document, const Json::Value& member,
                            Subject subject, std::string message) {
  at_offset("unknown-key", document, document.key_offset(member), subject, std::move(message));
}

void Found_Warnings::at_offset(const char* code, const Json_Document& document, std::size_t offset,
                               Subject subject, std::string message) {
  found_.push_back({&document == &documents_.mapping, offset, code, subject, std::move(message)});
}

std::vector<Document_Warning> Found_Warnings::take() {
  std::stable_sort(found_.begin(), found_.end(), [](const Found& left, const Found& right) {
    return std::tie(left.in_mapping, left.offset) < std::tie(right.in_mapping, right.offset);
  });
  std::vector<Document_Warning> warnings;
  warnings.reserve(found_.size());
  embedded_server::Text_Place last_in_config;
  embedded_server::Text_Place last_in_mapping;
  for (Found& found : found_) {
    warnings.push_back(
        located(std::move(found), found.in_mapping ? last_in_mapping : last_in_config));
  }
  found_.clear();
  return warnings;
}

Document_Warning Found_Warnings::located(Found&& found, embedded_server::Text_Place& last) const {
  const Json_Document& document = found.in_mapping ? documents_.mapping : documents_.config;
  return {found.code,
          {found.in_mapping ? "mapping" : "config",
           {std::move(found.message), document.locate_offset(found.offset, last)},
           found.subject.index,
           found.subject.id}};
}

std::string in_quotes(std::string_view text) {
  const std::string_view shown = embedded_server::first_letters(text, most_quoted_letters);
  std::string result = "\"";
  result += shown;
  result += shown.size() < text.size() ? "...\"" : "\"";
  return result;
}

}  // namespace kuv::vemora::operations
