// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only

// Catches by type what our libraries throw themselves.

#include <json/value.h>

#include <cstdio>
#include <stdexcept>
#include <string>

#include "vemora/platform/errors/vemora_error.h"
#include "vemora/platform/tags/tag_filter_error.h"
#include "vemora/platform/tags/tags_json_converter.h"
#include "vemora/trigger_parser/vemora_trigger_parser.h"

namespace kuv::test {
namespace {

using namespace kuv::vemora;

template <class Error, class Operation>
bool throws(const char* what, Operation operation) {
  try {
    operation();
  } catch (const Error&) {
    return true;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "catch_of_libraries: %s is caught as std::exception alone: %s\n", what,
                 error.what());
    return false;
  }
  std::fprintf(stderr, "catch_of_libraries: %s throws nothing\n", what);
  return false;
}

template <class Error>
bool a_tag_filter_throws() {
  return throws<Error>("a tag filter", [] { Vemora_Tags_JSON_Converter::parse_search_tags(1); });
}

template <class Error>
bool a_document_throws() {
  return throws<Error>("a document", [] {
    Json::Value document;
    document["properties"] = "none";
    Vemora_Trigger_Parser(nullptr, 1).parse_config_properties(document);
  });
}

bool all_are_caught() {
  return a_tag_filter_throws<Tag_Filter_Error>() &&
         a_tag_filter_throws<Backend_Error<std::runtime_error>>() &&
         a_tag_filter_throws<Backend_Error<std::exception>>() &&
         a_tag_filter_throws<Vemora_Error<std::exception>>() &&
         a_document_throws<Backend_Error<std::runtime_error>>() &&
         a_document_throws<Backend_Error<std::exception>>() &&
         a_document_throws<Vemora_Error<std::exception>>();
}

}  // namespace
}  // namespace kuv::test

int main() {
  return kuv::test::all_are_caught() ? 0 : 1;
}
