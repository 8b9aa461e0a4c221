#pragma once

#include <json/value.h>

namespace kuv::utils {

/// The elements of a JSON array, in order, for a loop over them. An element that was never assigned
/// counts as null here, as it does for Json::Value::operator[] and size(); the library's own
/// iterators skip it. Of several such elements in a row only the first is visited, so that a walk
/// takes as long as there are elements, however large the indexes are.
class Json_Elements {
 public:
  struct Element {
    Json::ArrayIndex index;
    const Json::Value& value;  ///< Json::Value::nullSingleton() where nothing was assigned
  };

  class Iterator {
   public:
    Iterator(Json::Value::const_iterator assigned, Json::Value::const_iterator end)
        : assigned_(assigned), end_(end) {
      look();
    }

    Element operator*() const {
      return {index_, is_assigned_ ? *assigned_ : Json::Value::nullSingleton()};
    }

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

  Iterator begin() const { return {array_.begin(), array_.end()}; }
  Iterator end() const { return {array_.end(), array_.end()}; }

 private:
  const Json::Value& array_;
};

}  // namespace kuv::utils
