// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/operations/warnings/foreign_bytes.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <utility>

#include "vemora/embedded_server/documents/foreign_texts.h"

namespace kuv::vemora::operations {
namespace {

using embedded_server::Foreign_Text;
using embedded_server::Json_Document;

/// What a place in a document belongs to.
class Elements {
 public:
  void add(const Json::Value& element, Subject subject, bool is_judged) {
    elements_.push_back({element.getOffsetStart(), element.getOffsetLimit(), subject, is_judged});
  }

  struct Element {
    std::ptrdiff_t begin;
    std::ptrdiff_t end;
    Subject subject;
    bool is_judged;
  };

  /// Null when it belongs to none of them.
  const Element* at(std::size_t offset) const {
    const auto place = static_cast<std::ptrdiff_t>(offset);
    const auto behind = std::upper_bound(
        elements_.begin(), elements_.end(), place,
        [](std::ptrdiff_t wanted, const Element& element) { return wanted < element.begin; });
    if (behind == elements_.begin() || place >= std::prev(behind)->end) {
      return nullptr;
    }
    return &*std::prev(behind);
  }

 private:
  std::vector<Element> elements_;
};

void warn_of(std::vector<Foreign_Text> texts, const Json_Document& document,
             const Elements& elements, Found_Warnings& found) {
  for (Foreign_Text& text : texts) {
    const Elements::Element* const element = elements.at(text.offset);
    if (element == nullptr || element->is_judged) {
      found.at_offset("not-utf8", document, text.offset,
                      element == nullptr ? Subject() : element->subject, std::move(text.message));
    }
  }
}

}  // namespace

void warn_of_foreign_bytes(const embedded_server::Read_Documents& documents,
                           const std::vector<Judged_Trigger>& triggers, Found_Warnings& found) {
  std::vector<Foreign_Text> in_config = embedded_server::foreign_texts(documents.config);
  if (!in_config.empty()) {
    Elements elements;
    for (const Judged_Trigger& trigger : triggers) {
      elements.add(trigger.element, trigger.subject, trigger.is_ours);
    }
    warn_of(std::move(in_config), documents.config, elements, found);
  }
  std::vector<Foreign_Text> in_mapping = embedded_server::foreign_texts(documents.mapping);
  if (!in_mapping.empty()) {
    Elements elements;
    const Json::Value& mapping = documents.mapping.value();
    if (mapping.isObject() && mapping["triggerMapping"].isArray()) {
      std::size_t index = 0;
      for (const Json::Value& association : mapping["triggerMapping"]) {
        elements.add(association, {index++}, true);
      }
    }
    warn_of(std::move(in_mapping), documents.mapping, elements, found);
  }
}

}  // namespace kuv::vemora::operations
