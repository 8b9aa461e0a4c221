// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "tools/vemora-triggers/process/stored_note.h"

namespace kuv::vemora::tools {
namespace {

const char* noted = "";

}  // namespace

void note_stored(const char* sentence) noexcept {
  noted = sentence;
}

const char* stored_note() noexcept {
  return noted;
}

}  // namespace kuv::vemora::tools
