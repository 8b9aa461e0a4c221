// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/operations/site/tag_texts.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <optional>

#include "vemora/operations/warnings/found_warnings.h"

namespace kuv::vemora::operations {
namespace {

constexpr std::size_t most_tags_named = 12;

/// A text that is empty or that could be taken for more than one is quoted.
std::string named(const std::string& text) {
  const bool plain = !text.empty() && text.size() < 60 &&
                     text.find_first_of(" ,=\"") == std::string::npos && text != "or";
  return plain ? text : in_quotes(text);
}

std::string pair_of(const std::string& name, const std::optional<std::string>& value) {
  return value ? named(name) + "=" + named(*value) : named(name);
}

std::string joined(const std::vector<std::string>& texts, const char* between) {
  if (texts.size() <= most_tags_named) {
    return fmt::format("{}", fmt::join(texts, between));
  }
  return fmt::format("{} and {} more",
                     fmt::join(texts.begin(), texts.begin() + most_tags_named, between),
                     texts.size() - most_tags_named);
}

}  // namespace

std::string described(const Tag_Map& tags) {
  std::vector<std::string> texts;
  for (const auto& [name, info] : tags) {
    texts.push_back(pair_of(name, info.value));
  }
  return texts.empty() ? "no tags" : joined(texts, ", ");
}

std::string described(const std::set<Tag_Entry>& tags) {
  std::vector<std::string> texts;
  texts.reserve(tags.size());
  for (const Tag_Entry& tag : tags) {
    texts.push_back(pair_of(tag.name, tag.info.value));
  }
  return texts.empty() ? "no tags" : joined(texts, ", ");
}

std::string described(const std::set<ODB_Utils::Tag_Search_Term>& terms) {
  std::vector<std::string> texts;
  texts.reserve(terms.size());
  for (const ODB_Utils::Tag_Search_Term& term : terms) {
    texts.push_back(pair_of(term.name, term.value));
  }
  return joined(texts, " or ");
}

std::string described(const std::vector<std::string>& words) {
  std::vector<std::string> texts;
  texts.reserve(words.size());
  for (const std::string& word : words) {
    texts.push_back(named(word));
  }
  return joined(texts, ", ");
}

}  // namespace kuv::vemora::operations
