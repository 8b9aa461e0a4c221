// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "support/message_register.h"

#include <algorithm>

namespace kuv::test {
namespace {

std::vector<std::string>::const_iterator find_message_of(std::string_view text) {
  const auto& messages = registered_messages();
  return std::find_if(messages.begin(), messages.end(),
                      [text](const auto& message) { return is_filled_from(text, message); });
}

}  // namespace

const std::vector<std::string>& registered_messages() {
  static const std::vector<std::string> messages{
      // the trigger list
      "Trigger configuration must be a JSON object.",
      "Missing \"triggers\" array.",
      "\"triggers\" must be an array of JSON objects.",
      "All \"id\" values must be unique, {} is duplicated.",
      "\"id\" field is missing or invalid.",
      "\"name\" field is missing or invalid.",
      "\"tags\" must be a JSON object.",
      "\"sources\" array is missing or invalid.",
      "\"sources\" array is empty.",
      "\"sources\" must be an array of JSON objects.",
      "\"type\" field is missing or invalid for source.",
      "An onvif-metadata source has a missing or invalid \"onvifTopic\" field.",
      "An onvif-metadata source has an \"onvifTopic\" field with an empty string.",
      "\"searchItem\" object is missing or invalid.\"",
      "An object-detection source has a missing or invalid object type.",
      "An object-detection source has an empty object type specified.",
      "An object-detection source has an invalid \"motionRequired\" field.",
      "\"activityDuration\" must be a JSON object.",
      "\"activityDuration.mode\" must be a string.",
      "\"activityDuration.mode\" must be \"object-presence\" or \"object-track\".",
      "\"activityDuration.minDurationMs\" is missing or invalid.",
      "\"activityDuration.minDurationMs\" must be between 1000 and 28800000.",
      "\"activityDuration.dropoutMs\" is missing or invalid.",
      "\"activityDuration.dropoutMs\" must be an unsigned integer.",
      "\"activityDuration.dropoutMs\" must be between 1000 and 600000.",
      "Duplicate entry in \"sources\" detected.",
      "\"anyTime\" field is invalid.",
      // the notification properties
      "\"properties\" must be a JSON object.",
      "\"properties.notificationMaxLatencySecs\" must be an unsigned integer.",
      "\"properties.notificationDigestCooldownMins\" must be an unsigned integer.",
      "\"properties.notificationAckTimeoutSecs\" must be an unsigned integer.",
      "\"properties.notificationNackDelayMs\" must be an unsigned integer.",
      // the mapping, and the schedules of a trigger
      "Trigger mapping must be a JSON object.",
      "\"triggerMapping\" array is missing or invalid.",
      "\"triggerMapping\" must be an array of JSON objects.",
      "\"scheduleIds\" array is missing or invalid.",
      "\"scheduleIds\" must be an array of unsigned integers.",
      "\"triggerIds\" array is missing or invalid.",
      "\"triggerIds\" array is empty.",
      "\"triggerIds\" must be an array of unsigned integers.",
      // the server itself
      "Failed to retrieve server tags due to invalid server ID",
  };
  return messages;
}

bool is_filled_from(std::string_view text, std::string_view message) {
  const std::size_t hole = message.find("{}");
  if (hole == std::string_view::npos) {
    return text == message;
  }
  const std::string_view before = message.substr(0, hole);
  const std::string_view after = message.substr(hole + 2);
  if (text.size() <= before.size() + after.size() || text.substr(0, before.size()) != before ||
      text.substr(text.size() - after.size()) != after) {
    return false;
  }
  const std::string_view filled =
      text.substr(before.size(), text.size() - before.size() - after.size());
  return filled.find_first_not_of("0123456789") == std::string_view::npos;
}

bool is_registered(std::string_view text) {
  return find_message_of(text) != registered_messages().end();
}

bool Message_Tally::note(std::string_view text) {
  const auto met = find_message_of(text);
  if (met == registered_messages().end()) {
    return false;
  }
  ++counts_[*met];
  return true;
}

std::vector<std::string> Message_Tally::met_less_than(int times) const {
  std::vector<std::string> rare;
  for (const auto& [message, count] : counts_) {
    if (count < times) {
      rare.push_back(message);
    }
  }
  return rare;
}

std::map<std::string, int> Message_Tally::none_yet() {
  std::map<std::string, int> counts;
  for (const std::string& message : registered_messages()) {
    counts.emplace(message, 0);
  }
  return counts;
}

}  // namespace kuv::test
