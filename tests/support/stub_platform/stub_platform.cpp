// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "support/stub_platform/stub_platform.h"

#include <utility>

namespace kuv::test::stub_platform {
namespace {

Listener& current_listener() {
  static Listener listener;
  return listener;
}

}  // namespace

void listen(Listener listener) {
  current_listener() = std::move(listener);
}

void called(Function function, const std::string& call) {
  if (current_listener()) {
    current_listener()(function, call);
  }
}

}  // namespace kuv::test::stub_platform
