// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/operations/warnings/judged_triggers.h"

#include <exception>
#include <new>
#include <set>

#include "vemora/platform/tags/tag_filter.h"
#include "vemora/platform/tags/tags_json_converter.h"
#include "vemora/trigger_parser/source_types.h"

namespace kuv::vemora::operations {
namespace {

/// Finds what the parser made of each element: one trigger, or nothing.
class Pairing {
 public:
  Pairing(const embedded_server::Read_Documents& documents, const Json::Value& elements)
      : left_(documents.triggers),
        valid_(documents.are_valid),
        none_is_left_out_(documents.triggers.size() == elements.size()) {}

  /// To be asked for every element, in their order.
  const Trigger_Config* next(const Json::Value& element) {
    if (!valid_ || next_ == left_.size() || !(none_is_left_out_ || has_source(element))) {
      return nullptr;
    }
    return &left_[next_++];
  }

 private:
  bool has_source(const Json::Value& element) {
    for (const Json::Value& source : element["sources"]) {
      if (is_kept(types_.type_of(source["type"].asString()))) {
        return true;
      }
    }
    return false;
  }

  const std::vector<Trigger_Config>& left_;
  std::size_t next_ = 0;
  bool valid_;
  bool none_is_left_out_;
  Source_Types types_;
};

/// Of a trigger that the parser did not make anything of.
bool lets_pass(const Json::Value& element, const Tag_Map& server_tags) {
  const Json::Value& tags = element["tags"];
  if (!tags.isObject() || tags["server"].isNull()) {
    return true;
  }
  try {
    const auto terms = Vemora_Tags_JSON_Converter::parse_search_tags(tags["server"]);
    return Tag_Filter::matches_any(server_tags, terms);
  } catch (const std::bad_alloc&) {
    throw;
  } catch (const std::exception&) {
    return true;  // a fault, told as such
  }
}

}  // namespace

std::vector<Judged_Trigger> judged_triggers(const embedded_server::Read_Documents& documents,
                                            const Tag_Map& server_tags) {
  std::vector<Judged_Trigger> judged;
  const Json::Value& elements = documents.config.value()["triggers"];
  if (!elements.isArray()) {
    return judged;
  }
  judged.reserve(elements.size());
  Pairing pairing(documents, elements);
  std::size_t index = 0;
  for (const Json::Value& element : elements) {
    Subject subject{index++};
    if (!element.isObject()) {
      continue;
    }
    const Json::Value& id = element["id"];
    if (id.isUInt64()) {
      subject.id = id.asUInt64();
    }
    const Trigger_Config* const config = pairing.next(element);
    judged.push_back(
        {element, subject, config,
         config != nullptr ? config->matches_server : lets_pass(element, server_tags)});
  }
  return judged;
}

}  // namespace kuv::vemora::operations
