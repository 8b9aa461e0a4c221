// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <string>

namespace kuv::vemora::embedded_server {

/// Who runs this process, and where: "ann@gate1", or the number of a user without a name. UTF-8.
std::string user_at_host();

}  // namespace kuv::vemora::embedded_server
