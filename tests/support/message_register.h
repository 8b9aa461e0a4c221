// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace kuv::test {

/// Every text that the parser rejects a document with, each once. "{}" stands for an id; all other
/// values in the texts are fixed.
const std::vector<std::string>& registered_messages();

/// Whether `text` is that registered message, its "{}" replaced by a number.
bool is_filled_from(std::string_view text, std::string_view message);

/// Whether `text` is any of them.
bool is_registered(std::string_view text);

/// Counts how often each registered message is met.
class Message_Tally {
 public:
  /// Counts `text`; false when it is in no way a registered message.
  bool note(std::string_view text);

  /// By registered message, those never met included.
  const std::map<std::string, int>& counts() const { return counts_; }

  /// The messages met fewer times than that.
  std::vector<std::string> met_less_than(int times) const;

 private:
  std::map<std::string, int> counts_ = none_yet();

  static std::map<std::string, int> none_yet();
};

}  // namespace kuv::test
