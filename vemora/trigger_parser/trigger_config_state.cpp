// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/trigger_parser/trigger_config_state.h"

#include <utility>

namespace kuv::vemora {

void Trigger_Config_State::add_error(Directive_Config_Processing::Error::Category category,
                                     std::string&& message) {
  errors.push_back({category, std::move(message)});
}

}  // namespace kuv::vemora
