// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <json/value.h>

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

  /// What a loop over the elements needs, and no more.
  class Iterator {
   public:
    /// At the element `assigned`, or at the one that was never assigned before it.
    Iterator(Json::Value::const_iterator assigned, Json::Value::const_iterator end)
        : assigned_(assigned), end_(end) {
      look();
    }

    /// The element.
    Element operator*() const {
      return {index_, is_assigned_ ? *assigned_ : Json::Value::nullSingleton()};
    }

    /// To the next element.
    Iterator& operator++() {
      if (is_assigned_) {
        ++assigned_;
        ++index_;
      } else {
        index_ = assigned_.index();
      }
      look();
      return *this;
    }

    /// Whether there are elements left, compared with end().
    bool operator!=(const Iterator& other) const { return assigned_ != other.assigned_; }

   private:
    void look() { is_assigned_ = assigned_ != end_ && assigned_.index() == index_; }

    Json::Value::const_iterator assigned_;  ///< the element at the index, or the next one behind it
    Json::Value::const_iterator end_;
    Json::ArrayIndex index_ = 0;
    bool is_assigned_ = false;
  };

  /// The array must stay as it is as long as the walk goes on.
  explicit Json_Elements(const Json::Value& array) : array_(array) {}

  /// At the first element.
  Iterator begin() const { return {array_.begin(), array_.end()}; }
  /// Behind the last element.
  Iterator end() const { return {array_.end(), array_.end()}; }

 private:
  const Json::Value& array_;
};

}  // namespace kuv::utils
