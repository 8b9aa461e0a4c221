// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <json/value.h>

#include <limits>

namespace kuv::utils {

/// The elements of a JSON array, in order, for a loop over them. An element that was never assigned
/// counts as null here, as it does for Json::Value::operator[] and size(); the library's own
/// iterators skip it. Of several such elements in a row only the first is visited, so that a walk
/// takes as long as there are elements, however large the indexes are.
class Json_Elements {
 public:
  /// One element and its place.
  struct Element {
    Json::ArrayIndex index;    ///< in the array
    const Json::Value& value;  ///< Json::Value::nullSingleton() where nothing was assigned
  };

  /// Behind the last element.
  struct End {};

  /// What a loop over the elements needs, and no more. The last element of an array was always
  /// assigned, so that its index is all that tells the end.
  class Iterator {
   public:
    /// At the first element.
    explicit Iterator(const Json::Value& array)
        : assigned_(array.begin()), next_(assigned_), last_(array.size() - 1) {
      // The size of an array with an element at the last possible index is said to be 0.
      constexpr Json::ArrayIndex last_possible = std::numeric_limits<Json::ArrayIndex>::max();
      is_over_ = last_ == last_possible && assigned_ == array.end();
      if (!is_over_) {
        look();
      }
    }

    /// The element.
    Element operator*() const {
      return {index_, is_assigned_ ? *assigned_ : Json::Value::nullSingleton()};
    }

    /// To the next element.
    Iterator& operator++() {
      if (!is_assigned_) {
        index_ = assigned_.index();
        is_assigned_ = true;
      } else if (index_ == last_) {
        is_over_ = true;
      } else {
        ++index_;
        assigned_ = next_;
        look();
      }
      return *this;
    }

    /// Whether there are elements left.
    bool operator!=(const End&) const { return !is_over_; }

   private:
    void look() {
      is_assigned_ = index_ == last_ || assigned_.index() == index_;
      if (index_ != last_) {
        ++next_;
      }
    }

    Json::Value::const_iterator assigned_;  ///< the element at the index, or the next one behind it
    Json::Value::const_iterator next_;  ///< behind it: on its way from memory while it is looked at
    Json::ArrayIndex last_;
    Json::ArrayIndex index_ = 0;
    bool is_assigned_ = false;
    bool is_over_ = false;
  };

  /// The array must stay as it is as long as the walk goes on.
  explicit Json_Elements(const Json::Value& array) : array_(array) {}

  /// At the first element.
  Iterator begin() const { return Iterator(array_); }
  /// Behind the last element.
  End end() const { return {}; }

 private:
  const Json::Value& array_;
};

}  // namespace kuv::utils
