// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <json/value.h>

#include "fuzz/random.h"

namespace kuv::fuzz {

/// A valid configuration document with one to three triggers, of all kinds and shapes.
Json::Value sample_configuration(Random& random);

/// A valid mapping document, mostly about the triggers of such a configuration.
Json::Value sample_mapping(Random& random);

}  // namespace kuv::fuzz
