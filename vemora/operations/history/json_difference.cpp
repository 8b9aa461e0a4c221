// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/operations/history/json_difference.h"

#include <json/writer.h>

#include <algorithm>
#include <iterator>
#include <memory>
#include <set>
#include <sstream>

namespace kuv::vemora::operations {
namespace {

/// The value with the elements of each list in the order of their texts.
Json::Value with_sorted_lists(const Json::Value& value);

std::string compact_text(const Json::Value& value) {
  static const Json::StreamWriterBuilder builder = [] {
    Json::StreamWriterBuilder made;
    made["indentation"] = "";
    return made;
  }();
  return Json::writeString(builder, value);
}

Json::Value sorted_list(const Json::Value& list) {
  std::vector<std::pair<std::string, Json::Value>> elements;
  elements.reserve(list.size());
  for (const Json::Value& element : list) {
    Json::Value sorted = with_sorted_lists(element);
    std::string text = compact_text(sorted);
    elements.emplace_back(std::move(text), std::move(sorted));
  }
  std::sort(elements.begin(), elements.end(),
            [](const auto& left, const auto& right) { return left.first < right.first; });
  Json::Value answer(Json::arrayValue);
  for (auto& [text, element] : elements) {
    answer.append(std::move(element));
  }
  return answer;
}

Json::Value with_sorted_lists(const Json::Value& value) {
  if (value.isArray()) {
    return sorted_list(value);
  }
  if (!value.isObject()) {
    return value;
  }
  Json::Value answer(Json::objectValue);
  for (auto member = value.begin(); member != value.end(); ++member) {
    answer[member.name()] = with_sorted_lists(*member);
  }
  return answer;
}

/// The same for values that say the same.
std::string canonical_text(const Json::Value& value) {
  return compact_text(with_sorted_lists(value));
}

using Texts_Of_Elements = std::vector<std::pair<std::string, const Json::Value*>>;

Texts_Of_Elements sorted_texts(const Json::Value& list) {
  Texts_Of_Elements texts;
  texts.reserve(list.size());
  for (const Json::Value& element : list) {
    texts.emplace_back(canonical_text(element), &element);
  }
  std::sort(texts.begin(), texts.end());
  return texts;
}

std::vector<const Json::Value*> elements_without(const Texts_Of_Elements& list,
                                                 const Texts_Of_Elements& others) {
  Texts_Of_Elements left;
  std::set_difference(
      list.begin(), list.end(), others.begin(), others.end(), std::back_inserter(left),
      [](const auto& first, const auto& second) { return first.first < second.first; });
  std::vector<const Json::Value*> elements;
  elements.reserve(left.size());
  for (const auto& [text, element] : left) {
    elements.push_back(element);
  }
  return elements;
}

/// A key that could be taken for two, or for none, stands in quotes.
std::string path_of(const std::string& path, const std::string& key) {
  const bool is_plain = !key.empty() && key.find_first_of(". \"") == std::string::npos;
  return (path.empty() ? "" : path + ".") +
         (is_plain ? key : Json::valueToQuotedString(key.c_str()));
}

void append_changed_field(const Json::Value* before, const Json::Value* after,
                          const std::string& path, std::vector<Changed_Field>& fields);

void append_members(const Json::Value& before, const Json::Value& after, const std::string& path,
                    const std::string& ignored, std::vector<Changed_Field>& fields) {
  std::set<std::string> keys;
  for (const Json::Value* const object : {&before, &after}) {
    for (auto member = object->begin(); member != object->end(); ++member) {
      keys.insert(member.name());
    }
  }
  keys.erase(ignored);
  for (const std::string& key : keys) {
    append_changed_field(before.find(key.data(), key.data() + key.size()),
                         after.find(key.data(), key.data() + key.size()), path_of(path, key),
                         fields);
  }
}

void append_changed_field(const Json::Value* before, const Json::Value* after,
                          const std::string& path, std::vector<Changed_Field>& fields) {
  const bool are_there = before != nullptr && after != nullptr;
  if (are_there && before->isObject() && after->isObject()) {
    return append_members(*before, *after, path, "", fields);
  }
  if (are_there && before->isArray() && after->isArray()) {
    List_Difference lists = difference_of_lists(*before, *after);
    if (!lists.removed.empty() || !lists.added.empty()) {
      fields.push_back({path, nullptr, nullptr, std::move(lists.removed), std::move(lists.added)});
    }
    return;
  }
  if (!are_there || canonical_text(*before) != canonical_text(*after)) {
    fields.push_back({path, before, after, {}, {}});
  }
}

}  // namespace

List_Difference difference_of_lists(const Json::Value& before, const Json::Value& after) {
  const Texts_Of_Elements old_elements = sorted_texts(before);
  const Texts_Of_Elements new_elements = sorted_texts(after);
  return {elements_without(old_elements, new_elements),
          elements_without(new_elements, old_elements)};
}

void append_changed_fields(const Json::Value& before, const Json::Value& after,
                           const std::string& ignored, std::vector<Changed_Field>& fields) {
  append_members(before, after, "", ignored, fields);
}

}  // namespace kuv::vemora::operations
