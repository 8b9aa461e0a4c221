// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "tools/vemora-triggers/commands/input.h"

#include <limits>
#include <memory>
#include <utility>

namespace kuv::vemora::tools {

using embedded_server::Json_Document;

Json_Document read_input(const Options& options, const std::string& role, const std::string& path) {
  try {
    return Json_Document::read(path, embedded_server::largest_document, options.max_values);
  } catch (const embedded_server::Document_Error& error) {
    throw Unreadable_Document{role, path, {error.what(), error.location}, error.line};
  }
}

Json_Document document_taken_before(const std::string& text) {
  return Json_Document(text, std::numeric_limits<std::size_t>::max());
}

Fault_List located(
    const std::vector<embedded_server::Document_Warning>& warnings,
    const std::function<Located_Fault(const embedded_server::Check_Fault&)>& locate) {
  return {warnings.size(), [&](std::size_t number) {
            const embedded_server::Document_Warning& warning = warnings[number];
            Located_Fault fault = locate(warning.fault);
            fault.warning = warning.code;
            if (warning.stored) {
              fault.document = warning.stored.get();
            }
            return fault;
          }};
}

namespace {

/// The triggers of a configuration; null where there is no list of them.
const Json::Value& triggers_of(const Json_Document& config) {
  const Json::Value& root = config.value();
  return root.isObject() && root["triggers"].isArray() ? root["triggers"]
                                                       : Json::Value::nullSingleton();
}

}  // namespace

First_Ids::First_Ids(const Json_Document& config) : config_(config) {
  std::size_t index = 0;
  for (const Json::Value& element : triggers_of(config)) {
    if (element.isObject() && element["id"].isUInt64()) {
      indices_.try_emplace(element["id"].asUInt64(), index);
    }
    ++index;
  }
}

std::optional<embedded_server::Location> First_Ids::before(
    const embedded_server::Check_Fault& fault) const {
  const auto first = indices_.find(*fault.id);
  if (first == indices_.end() || first->second >= *fault.index) {
    return std::nullopt;
  }
  const auto id_at = [this](std::size_t index) {
    return config_.locate(triggers_of(config_)[static_cast<Json::ArrayIndex>(index)]["id"]);
  };
  const embedded_server::Location given = id_at(*fault.index);
  const bool is_about_id =
      given.line == fault.fault.location.line && given.column == fault.fault.location.column;
  return is_about_id ? std::make_optional(id_at(first->second)) : std::nullopt;
}

Trigger_Documents::Trigger_Documents(const Options& options, std::string config_path,
                                     std::string mapping_path)
    : config_path_(std::move(config_path)),
      mapping_path_(std::move(mapping_path)),
      config_(read_input(options, "config", config_path_)) {
  if (!mapping_path_.empty()) {
    mapping_ = read_input(options, "mapping", mapping_path_);
  }
}

Trigger_Documents::Trigger_Documents(std::string config_path, Json_Document config,
                                     std::string mapping_path, std::optional<Json_Document> mapping)
    : config_path_(std::move(config_path)),
      mapping_path_(std::move(mapping_path)),
      config_(std::move(config)),
      mapping_(std::move(mapping)) {}

const Trigger_Documents& Trigger_Documents::read_for_good(const Options& options,
                                                          const std::string& config_path,
                                                          const std::string& mapping_path) {
  static auto* const read = new std::vector<std::unique_ptr<Trigger_Documents>>;
  read->push_back(std::make_unique<Trigger_Documents>(options, config_path, mapping_path));
  return *read->back();
}

Located_Fault Trigger_Documents::locate(const embedded_server::Check_Fault& found) const {
  const bool in_config = found.document == "config";
  Located_Fault located{found.document,
                        in_config ? config_path_ : mapping_path_,
                        found.fault,
                        in_config ? &config_ : mapping(),
                        {},
                        found.index,
                        found.id};
  if (in_config && found.index && found.id) {
    if (!first_ids_) {
      first_ids_.emplace(config_);
    }
    located.first = first_ids_->before(found);
  }
  return located;
}

}  // namespace kuv::vemora::tools
