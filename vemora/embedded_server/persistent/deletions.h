#pragma once

#include <cstddef>
#include <functional>

namespace kuv::vemora::embedded_server {

/// How many records of a kind a pass is about to delete, and of how many that are stored.
struct Deletions {
  struct Of {
    std::size_t deleted = 0;
    std::size_t stored = 0;
  };

  Of triggers;
  Of topic_subscriptions;

  bool empty() const { return triggers.deleted == 0 && topic_subscriptions.deleted == 0; }
};

/// Says whether a pass may be committed that deletes this much.
using Permit_Deletions = std::function<bool(const Deletions&)>;

}  // namespace kuv::vemora::embedded_server
