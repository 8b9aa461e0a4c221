// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "trigger_parser/rejection.h"

#include <utility>

namespace kuv::test {

Message_Tally& messages_asserted() {
  static Message_Tally tally;
  return tally;
}

Rejection::Rejection(std::string text, Message_Tally& asserted)
    : text_(std::move(text)), asserted_(&asserted) {}

bool Rejection::operator==(std::string_view expected) const {
  const bool same = text_ == expected;
  if (same) {
    asserted_->note(text_);
  }
  return same;
}

std::ostream& operator<<(std::ostream& stream, const Rejection& rejection) {
  return stream << '"' << rejection.text_ << '"';
}

}  // namespace kuv::test
