// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "tools/vemora-triggers/render/explain.h"

#include <fmt/format.h>
#include <fmt/ranges.h>
#include <json/value.h>

#include <algorithm>
#include <iostream>
#include <string>
#include <vector>

#include "tools/vemora-triggers/render/json.h"
#include "tools/vemora-triggers/render/reasons.h"
#include "tools/vemora-triggers/render/terminal.h"
#include "vemora/embedded_server/texts/printable.h"

namespace kuv::vemora::tools {
namespace {

using embedded_server::printable;
using operations::Explanation;
using State = Explanation::State;

const char* name_of(State state) {
  switch (state) {
    case State::active:
      return "active";
    case State::inactive:
      return "inactive";
    case State::dropped:
      return "dropped";
    case State::failed:
      return "failed";
    case State::not_configured:
      return "not-configured";
  }
  return "";
}

const char* sentence_of(State state) {
  switch (state) {
    case State::active:
      return "is active";
    case State::inactive:
      return "is inactive";
    case State::dropped:
      return "is left out";
    case State::failed:
      return "has failed";
    case State::not_configured:
      return "is not configured";
  }
  return "";
}

Json::Value to_json(const Explanation::Camera& camera) {
  Json::Value object(Json::objectValue);
  object["id"] = Json::UInt64(camera.id);
  object["selected"] = camera.selected;
  object["reasons"] = reasons_to_json(camera.reasons);
  object["topics"] = Json::Value(Json::arrayValue);
  for (const Explanation::Topic& topic : camera.topics) {
    Json::Value entry(Json::objectValue);
    entry["topic"] = topic.topic;
    entry["subscribed"] = topic.subscribed;
    entry["reasons"] = reasons_to_json(topic.reasons);
    object["topics"].append(entry);
  }
  object["detected"] = camera.detected;
  object["objects"] = Json::Value(Json::arrayValue);
  for (const std::string& type : camera.objects) {
    object["objects"].append(type);
  }
  return object;
}

Json::Value to_json(const Explanation& explained) {
  Json::Value object(Json::objectValue);
  object["id"] = Json::UInt64(explained.id);
  object["name"] = explained.name ? Json::Value(*explained.name) : Json::Value();
  object["state"] = name_of(explained.state);
  object["reasons"] = reasons_to_json(explained.reasons);
  object["cameras"] = Json::Value(Json::arrayValue);
  for (const Explanation::Camera& camera : explained.cameras) {
    object["cameras"].append(to_json(camera));
  }
  object["subscriptions"] = Json::Value(Json::arrayValue);
  for (const Explanation::Subscription& subscription : explained.subscriptions) {
    Json::Value entry(Json::objectValue);
    entry["id"] = Json::UInt64(subscription.id);
    entry["joined"] = subscription.joined;
    entry["reasons"] = reasons_to_json(subscription.reasons);
    object["subscriptions"].append(entry);
  }
  return object;
}

std::string answer(bool is, const char* yes, const char* no, const operations::Reasons& reasons) {
  const std::string why = described(reasons);
  return std::string(is ? yes : no) + (why.empty() ? "" : ": " + why);
}

std::string listed(const std::vector<std::string>& types) {
  std::vector<std::string> texts;
  texts.reserve(types.size());
  for (const std::string& type : types) {
    texts.push_back(printable(type));
  }
  return texts.empty() ? "(detection)" : fmt::format("{}", fmt::join(texts, ", "));
}

/// The page for people says what keeps the whole trigger silent once, at its top.
class Page {
 public:
  explicit Page(const Explanation& explained) : explained_(explained) {}

  void print() {
    print_head();
    for (const Explanation::Camera& camera : explained_.cameras) {
      add_rows(camera);
    }
    print_part({"CAMERA", "NAME", "LISTENS TO", "ANSWER"}, listening_);
    print_part({"NOT SELECTED", "NAME", "WHY"}, unselected_);
    std::vector<Row> subscriptions;
    for (const Explanation::Subscription& subscription : explained_.subscriptions) {
      subscriptions.push_back(
          {std::to_string(subscription.id), printable(subscription.name),
           answer(subscription.joined, "joined", "not joined", briefly(subscription.reasons))});
    }
    print_part({"SUBSCRIPTION", "NAME", "ANSWER"}, subscriptions);
  }

 private:
  void print_head() const {
    std::cout << "Trigger " << explained_.id;
    if (explained_.name) {
      std::cout << " \"" << printable(*explained_.name) << '"';
    }
    std::cout << ' ' << sentence_of(explained_.state)
              << (explained_.reasons.empty() ? ".\n" : ":\n");
    for (const operations::Reason& reason : explained_.reasons) {
      std::cout << "  " << printable(reason.text) << '\n';
    }
  }

  /// Without what is said of the trigger already.
  operations::Reasons briefly(const operations::Reasons& reasons) const {
    operations::Reasons own;
    for (const operations::Reason& reason : reasons) {
      if (std::none_of(explained_.reasons.begin(), explained_.reasons.end(),
                       [&](const auto& said) { return said.text == reason.text; })) {
        own.push_back(reason);
      }
    }
    return own;
  }

  /// A row for each topic, one for what is detected, and one for a camera with neither.
  void add_rows(const Explanation::Camera& camera) {
    const std::string id = std::to_string(camera.id);
    const std::string name = camera.name ? printable(*camera.name) : "(gone)";
    const operations::Reasons reasons = briefly(camera.reasons);
    const std::size_t rows_before = listening_.size();
    for (const Explanation::Topic& topic : camera.topics) {
      listening_.push_back(
          {id, name, printable(topic.topic),
           answer(topic.subscribed, "subscribed", "not subscribed", briefly(topic.reasons))});
    }
    if (camera.detected || (camera.selected && !reasons.empty())) {
      const char* const detected = reasons.empty() ? "detected" : "detected, but";
      listening_.push_back({id, name, listed(camera.objects),
                            answer(camera.detected, detected, "not detected", reasons)});
    } else if (camera.selected && listening_.size() == rows_before) {
      listening_.push_back({id, name, "-", "selected"});
    } else if (!camera.selected && !reasons.empty()) {
      unselected_.push_back({id, name, described(reasons)});
    }
  }

  static void print_part(const Row& headings, const std::vector<Row>& rows) {
    if (!rows.empty()) {
      std::cout << '\n';
      print_table(headings, rows);
    }
  }

  const Explanation& explained_;
  std::vector<Row> listening_;
  std::vector<Row> unselected_;
};

}  // namespace

void print_explanation(const Options& options, const Explanation& explained) {
  if (options.json) {
    print_json(to_json(explained));
  } else {
    Page(explained).print();
  }
}

}  // namespace kuv::vemora::tools
