// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <ostream>
#include <string>
#include <string_view>

#include "support/message_register.h"

namespace kuv::test {

/// The registered messages that tests of this executable have asserted.
Message_Tally& messages_asserted();

/// The text that a document was rejected with. To compare it is to assert it: when the whole text
/// is the expected one, and a registered message, the tally counts it.
class Rejection {
 public:
  explicit Rejection(std::string text, Message_Tally& asserted = messages_asserted());

  bool operator==(std::string_view expected) const;
  friend std::ostream& operator<<(std::ostream& stream, const Rejection& rejection);

 private:
  std::string text_;
  Message_Tally* asserted_;
};

}  // namespace kuv::test
