// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <string>

#include "benchmarks/floor.h"

namespace kuv::benchmarks {

/// The same rows into a fresh schema, by COPY, in one transaction. Answers the seconds.
double write_postgresql_floor(const std::string& url, const Plain_Rows& rows);

/// Reads every row of that schema, one query a table, and builds the state that a pusher receives.
/// Answers the seconds.
double read_postgresql_floor(const std::string& url, vemora::Trigger_Config_State& state);

/// Takes a schema away with all that is in it.
void drop_schema(const std::string& url);

}  // namespace kuv::benchmarks
