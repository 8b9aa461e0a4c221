// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/trigger_parser/parse_tags.h"

#include <exception>
#include <new>

#include "vemora/platform/tags/tag_filter_error.h"
#include "vemora/platform/tags/tags_json_converter.h"
#include "vemora/trigger_parser/members.h"

namespace kuv::vemora {
namespace {

using Terms = std::set<ODB_Utils::Tag_Search_Term>;

void parse_tag_filter(const Json::Value& filter, Terms& parsed, Faults& faults) {
  if (filter.isNull()) {
    return;
  }
  try {
    parsed = Vemora_Tags_JSON_Converter::parse_search_tags(filter);
  } catch (const Tag_Filter_Error& error) {
    for (const auto& fault : error.faults()) {
      if (!faults.tell(fault.message, fault.offset)) {
        throw;
      }
    }
  } catch (const std::bad_alloc&) {
    throw;  // says nothing about the filter
  } catch (const std::exception& error) {
    if (!faults.tell(error.what(), offset_of(filter))) {
      throw;
    }
  }
}

}  // namespace

void parse_tags(const Member& tags, Trigger_Config::Tags& parsed, Faults& faults) {
  if (faults.require(tags->isObject(), tags, "\"tags\" must be a JSON object.")) {
    Member server, camera, event_subscription;
    find_members(*tags, Wanted{"server", server}, Wanted{"camera", camera},
                 Wanted{"eventSubscription", event_subscription});
    parse_tag_filter(*server, parsed.server, faults);
    parse_tag_filter(*camera, parsed.camera, faults);
    parse_tag_filter(*event_subscription, parsed.event_subscription, faults);
  }
}

}  // namespace kuv::vemora
