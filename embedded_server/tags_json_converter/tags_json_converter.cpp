#include "vemora/platform/tags/tags_json_converter.h"

#include <fmt/format.h>

#include <stdexcept>
#include <string>

#include "vemora/platform/errors/error_codes.h"
#include "vemora/platform/errors/vemora_error.h"

namespace kuv::vemora::Vemora_Tags_JSON_Converter {
namespace {

using Terms = std::set<ODB_Utils::Tag_Search_Term>;

[[noreturn]] void reject(const std::string& message) {
  throw Backend_Error<std::runtime_error>(message, error_codes::invalid_document);
}

/// One wanted value of a tag; false when `value` is none.
bool add_term(const std::string& name, const Json::Value& value, Terms& terms) {
  if (value.isNull()) {
    terms.insert({name, std::nullopt});
    return true;
  }
  if (value.isString()) {
    terms.insert({name, value.asString()});
    return true;
  }
  return false;
}

void add_terms(const std::string& name, const Json::Value& wanted, Terms& terms) {
  if (!wanted.isArray()) {
    if (!add_term(name, wanted, terms)) {
      reject(fmt::format("Tag \"{}\" must be a string, null or an array of them.", name));
    }
    return;
  }
  if (wanted.empty()) {
    reject(fmt::format("Tag \"{}\" has an empty array.", name));
  }
  for (const Json::Value& value : wanted) {
    if (!add_term(name, value, terms)) {
      reject(fmt::format("Tag \"{}\" must be an array of strings and nulls.", name));
    }
  }
}

}  // namespace

Terms parse_search_tags(const Json::Value& tags) {
  if (!tags.isObject()) {
    reject("A tag filter must be a JSON object.");
  }
  Terms terms;
  const auto end = tags.end();
  for (auto tag = tags.begin(); tag != end; ++tag) {
    add_terms(tag.name(), *tag, terms);
  }
  return terms;
}

}  // namespace kuv::vemora::Vemora_Tags_JSON_Converter
