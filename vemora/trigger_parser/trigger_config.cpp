// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/trigger_parser/trigger_config.h"

namespace kuv::vemora {

std::vector<std::string> Trigger_Config::all_source_topics() const {
  std::vector<std::string> topics;
  for (const Trigger_Source& source : sources) {
    if (source.type == Trigger_Source_Type::onvif_metadata) {
      topics.push_back(source.onvif_topic.value());
    }
  }
  return topics;
}

}  // namespace kuv::vemora
