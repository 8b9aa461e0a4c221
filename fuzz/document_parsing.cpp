// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "fuzz/document_parsing.h"

#include <json/json.h>

#include <exception>
#include <stdexcept>

#include "fuzz/fault_promises.h"
#include "fuzz/promises.h"
#include "fuzz/site.h"
#include "support/json.h"
#include "support/message_register.h"
#include "vemora/platform/errors/vemora_error.h"
#include "vemora/platform/tags/tags_json_converter.h"
#include "vemora/trigger_parser/vemora_trigger_parser.h"

namespace kuv::fuzz {
namespace {

using namespace kuv::vemora;

Parsed parse(Trigger_Parser& parser, const Json::Value& configuration, const Json::Value& mapping) {
  Parsed parsed;
  parsed.properties = parser.parse_config_properties(configuration);
  parsed.mapping = parser.parse_trigger_mapping(mapping);
  parsed.configs = parser.parse_trigger_configs(configuration, parsed.mapping);
  return parsed;
}

std::string complaint_about(const Json::Value& filter) {
  try {
    Vemora_Tags_JSON_Converter::parse_search_tags(filter);
  } catch (const std::exception& error) {
    return error.what();
  }
  return "";
}

/// Whether the converter, asked about the filters of the document, says that text of one of them.
bool is_about_tags(const std::string& text, const Json::Value& configuration) {
  for (const Json::Value& trigger : configuration["triggers"]) {
    if (!trigger.isObject() || !trigger["tags"].isObject()) {
      break;  // nothing behind it was looked at
    }
    for (const char* filter : {"server", "camera", "eventSubscription"}) {
      const Json::Value& terms = trigger["tags"][filter];
      if (!terms.isNull() && complaint_about(terms) == text) {
        return true;
      }
    }
  }
  return false;
}

Judge judge_of(const Backend_Error<std::runtime_error>& error, const Json::Value& configuration) {
  if (error.error_code != 245760) {
    return Judge::unknown;
  }
  if (test::is_registered(error.what())) {
    return Judge::parser;
  }
  return is_about_tags(error.what(), configuration) ? Judge::tag_converter : Judge::unknown;
}

Judge judge_of(const Internal_Error<std::logic_error>& error) {
  const bool server_is_missing = error.error_code == -2 && test::is_registered(error.what());
  return server_is_missing ? Judge::parser : Judge::unknown;
}

/// Keys of a document are looked up before it is known to have any.
bool has_keys(const Json::Value& document) {
  return document.isObject() || document.isNull();
}

Verdict judge(Vemora_Trigger_Parser& parser, const Json::Value& configuration,
              const Json::Value& mapping) {
  try {
    const Parsed parsed = parse(parser, configuration, mapping);
    return {Judge::nobody, "", broken_promises(parsed, configuration, mapping)};
  } catch (const Backend_Error<std::runtime_error>& error) {
    return {judge_of(error, configuration), error.what(), {}};
  } catch (const Internal_Error<std::logic_error>& error) {
    return {judge_of(error), error.what(), {}};
  } catch (const Json::LogicError& error) {
    return {has_keys(configuration) ? Judge::unknown : Judge::json_library, error.what(), {}};
  } catch (const std::exception& error) {
    return {Judge::unknown, error.what(), {}};
  }
}

Verdict parse_values(const Json::Value& configuration, const Json::Value& mapping,
                     const Documents& documents) {
  test::Fake_Database site = a_site(documents.server_is_known);
  Vemora_Trigger_Parser parser(test::make_fake_repository(site), server_id);
  Verdict verdict = judge(parser, configuration, mapping);
  const auto broken = broken_promises_of_faults(
      parser, configuration, mapping, {documents.configuration.size(), documents.mapping.size()},
      verdict.text);
  verdict.broken_promises.insert(verdict.broken_promises.end(), broken.begin(), broken.end());
  return verdict;
}

}  // namespace

Documents split_documents(std::string_view text) {
  constexpr std::string_view line = "\n---\n";
  const std::size_t end = text.find(line);
  if (end == std::string_view::npos) {
    return {std::string(text), R"({"triggerMapping": []})"};
  }
  return {std::string(text.substr(0, end)), std::string(text.substr(end + line.size()))};
}

Verdict parse_documents(const Documents& documents) {
  Json::Value configuration;
  Json::Value mapping;
  try {
    configuration = test::json(documents.configuration);
    mapping = test::json(documents.mapping);
  } catch (const std::invalid_argument& error) {
    return {Judge::json_library, error.what(), {}};
  } catch (const Json::RuntimeError& error) {  // nested too deeply
    return {Judge::json_library, error.what(), {}};
  }
  return parse_values(configuration, mapping, documents);
}

}  // namespace kuv::fuzz
