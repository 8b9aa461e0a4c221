#include "vemora/embedded_server/host/warn_of_unstorable_texts.h"

#include <fmt/format.h>

#include <cstdint>
#include <map>
#include <string>
#include <string_view>

#include "vemora/embedded_server/persistent/inventory.h"

namespace kuv::vemora::embedded_server {
namespace {

/// A text to what is wrong with it.
using Objections = std::map<std::string, std::string, std::less<>>;

/// The texts that triggers have stored, each with the trigger's id.
class Stored_Texts {
 public:
  explicit Stored_Texts(const std::vector<Trigger_Config>& triggers) {
    for (const Trigger_Config& config : triggers) {
      if (is_active(config)) {
        add(config);
      }
    }
  }

  std::map<std::uint64_t, Objections> objections(const std::shared_ptr<Database>& database) const {
    std::map<std::uint64_t, Objections> found;
    for (const Unstorable_Text& text : unstorable_texts(database, texts_)) {
      found[ids_[text.place]].emplace(texts_[text.place], text.why);
    }
    return found;
  }

 private:
  void add(const Trigger_Config& config) {
    add(config.id, config.name);
    for (const Trigger_Source& source : config.sources) {
      if (source.onvif_topic) {
        add(config.id, *source.onvif_topic);
      }
      if (source.search_item) {
        add(config.id, source.search_item->object_type);
      }
    }
  }

  void add(std::uint64_t id, std::string_view text) {
    texts_.push_back(text);
    ids_.push_back(id);
  }

  std::vector<std::string_view> texts_;
  std::vector<std::uint64_t> ids_;
};

/// Looks the texts of one trigger up in its document.
class Trigger_In_Document {
 public:
  Trigger_In_Document(const Json_Document& document, std::size_t index, const Json::Value& trigger,
                      const Objections& objections, std::vector<Document_Warning>& warnings)
      : document_(document),
        index_(index),
        trigger_(trigger),
        objections_(objections),
        warnings_(warnings) {}

  void warn() {
    warn_of(trigger_, "name");
    for (const Json::Value& source : trigger_["sources"]) {
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
      const std::string message =
          fmt::format("\"{}\" cannot be stored in this database: {}.", key, objection->second);
      warnings_.push_back(
          {"not-storable",
           {"config", {message, document_.locate(text)}, index_, trigger_["id"].asUInt64()}});
    }
  }

  const Json_Document& document_;
  std::size_t index_;
  const Json::Value& trigger_;
  const Objections& objections_;
  std::vector<Document_Warning>& warnings_;
};

}  // namespace

void warn_of_unstorable_texts(const std::shared_ptr<Database>& database,
                              const std::vector<Trigger_Config>& triggers,
                              const Json_Document& document,
                              std::vector<Document_Warning>& warnings) {
  const auto objections = Stored_Texts(triggers).objections(database);
  if (objections.empty()) {
    return;
  }
  std::size_t index = 0;
  for (const Json::Value& trigger : document.value()["triggers"]) {
    const auto found =
        trigger["id"].isUInt64() ? objections.find(trigger["id"].asUInt64()) : objections.end();
    if (found != objections.end()) {
      Trigger_In_Document(document, index, trigger, found->second, warnings).warn();
    }
    ++index;
  }
}

}  // namespace kuv::vemora::embedded_server
