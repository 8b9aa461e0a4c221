// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <json/value.h>

#include <cstddef>
#include <string_view>

namespace kuv::utils {

/// The members of a JSON object, in the order of their names, for a loop over them. The number of
/// members tells the end, which is what makes the loop faster than one with the library's own end.
class Json_Members {
 public:
  /// One member. The name lies in the object, as the value does.
  struct Member {
    std::string_view name;     ///< may hold any byte, NUL included
    const Json::Value& value;  ///< null where null was written
  };

  /// Behind the last member.
  struct End {};

  /// What a loop over the members needs, and no more.
  class Iterator {
   public:
    /// At the first member.
    explicit Iterator(const Json::Value& object) : at_(object.begin()), left_(object.size()) {}

    /// The member.
    Member operator*() const {
      const char* end = nullptr;
      const char* const begin = at_.memberName(&end);
      return {{begin, static_cast<std::size_t>(end - begin)}, *at_};
    }

    /// To the next member.
    Iterator& operator++() {
      --left_;
      if (left_ > 0) {
        ++at_;
      }
      return *this;
    }

    /// Whether there are members left.
    bool operator!=(const End&) const { return left_ > 0; }

   private:
    Json::Value::const_iterator at_;
    Json::ArrayIndex left_;
  };

  /// The object must stay as it is as long as the walk goes on.
  explicit Json_Members(const Json::Value& object) : object_(object) {}

  /// At the first member.
  Iterator begin() const { return Iterator(object_); }
  /// Behind the last member.
  End end() const { return {}; }

 private:
  const Json::Value& object_;
};

}  // namespace kuv::utils
