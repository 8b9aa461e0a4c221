// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <functional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace kuv::vemora::operations {

/// Keeps each text once, in the order in which they first came.
template <class Less = std::less<std::string>>
class Distinct_Texts {
 public:
  explicit Distinct_Texts(Less less = Less()) : known_(std::move(less)) {}

  void add(const std::string& text) {
    if (known_.insert(text).second) {
      texts_.push_back(text);
    }
  }

  const std::vector<std::string>& texts() const { return texts_; }

 private:
  std::set<std::string, Less> known_;
  std::vector<std::string> texts_;
};

}  // namespace kuv::vemora::operations
