#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>

namespace odb {
class database;
}

namespace kuv::vemora::embedded_server {

/// Gives out ids of one kind of record: never one that is taken, and as long as there are enough,
/// none that was given out in a pass that wrote something. Where a pass was rolled back, or came to
/// nothing, its ids are given out again.
class Id_Allocator {
 public:
  Id_Allocator(odb::database& database, std::string kind);

  /// `is_taken` says of an id whether a record has it.
  template <class Is_Taken>
  std::uint64_t allocate(Is_Taken is_taken) {
    while (is_taken(next_)) {
      ++next_;
    }
    return next_++;
  }

  /// Writes where to go on, if any were given out.
  void save();

 private:
  odb::database& database_;
  std::string kind_;
  std::optional<std::uint64_t> stored_;
  std::uint64_t next_ = 1;
};

}  // namespace kuv::vemora::embedded_server
