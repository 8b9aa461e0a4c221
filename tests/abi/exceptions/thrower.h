// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

namespace kuv::test {

using Throw = void (*)();

/// Throws one of the family each, in a library of its own.
struct Thrower {
  Throw vemora_runtime_error, vemora_logic_error, internal_runtime_error, internal_logic_error,
      backend_runtime_error, tag_filter_error;
};

__attribute__((visibility("default"))) Thrower thrower();

}  // namespace kuv::test
