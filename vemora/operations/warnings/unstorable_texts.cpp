// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/operations/warnings/unstorable_texts.h"

#include <fmt/format.h>

#include <map>
#include <string>
#include <string_view>

#include "vemora/embedded_server/persistent/inventory.h"
#include "vemora/embedded_server/persistent/stored_texts.h"

namespace kuv::vemora::operations {
namespace {

/// A text to what is wrong with it.
using Objections = std::map<std::string, std::string, std::less<>>;

/// The texts that triggers have stored, each with the trigger's place in the list.
class Stored_Texts {
 public:
  explicit Stored_Texts(const std::vector<Judged_Trigger>& triggers) {
    for (std::size_t place = 0; place < triggers.size(); ++place) {
      const Trigger_Config* const config = triggers[place].config;
      if (config != nullptr && is_active(*config)) {
        embedded_server::for_each_stored_text(config->name, config->sources,
                                              [&](const std::string& text) {
                                                texts_.push_back(text);
                                                places_.push_back(place);
                                              });
      }
    }
  }

  std::map<std::size_t, Objections> objections(
      const std::shared_ptr<embedded_server::Database>& database) const {
    std::map<std::size_t, Objections> found;
    for (const embedded_server::Unstorable_Text& text : unstorable_texts(database, texts_)) {
      found[places_[text.place]].emplace(texts_[text.place], text.why);
    }
    return found;
  }

 private:
  std::vector<std::string_view> texts_;
  std::vector<std::size_t> places_;
};

/// Looks the texts of one trigger up in its document.
class Texts_In_Document {
 public:
  Texts_In_Document(const Judged_Trigger& trigger, const Objections& objections,
                    Found_Warnings& found)
      : trigger_(trigger), objections_(objections), found_(found) {}

  void warn() {
    warn_of(trigger_.element, "name");
    for (const Json::Value& source : trigger_.element["sources"]) {
      warn_of(source, "onvifTopic");
      if (source["searchItem"].isObject()) {
        warn_of(source["searchItem"], "type");
      }
    }
  }

 private:
  void warn_of(const Json::Value& object, const char* key) {
    const Json::Value& text = object[key];
    const auto objection = text.isString() ? objections_.find(text.asString()) : objections_.end();
    if (objection != objections_.end()) {
      found_.in_config(
          "not-storable", text, trigger_.subject,
          fmt::format("\"{}\" cannot be stored in this database: {}.", key, objection->second));
    }
  }

  const Judged_Trigger& trigger_;
  const Objections& objections_;
  Found_Warnings& found_;
};

}  // namespace

void warn_of_unstorable_texts(const std::shared_ptr<embedded_server::Database>& database,
                              const std::vector<Judged_Trigger>& triggers, Found_Warnings& found) {
  for (const auto& [place, objections] : Stored_Texts(triggers).objections(database)) {
    Texts_In_Document(triggers[place], objections, found).warn();
  }
}

}  // namespace kuv::vemora::operations
