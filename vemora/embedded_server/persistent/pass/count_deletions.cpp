// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/persistent/pass/count_deletions.h"

namespace kuv::vemora::embedded_server {
namespace {

/// What was deleted is not there any more, and what was added was not there before.
Deletions::Of count(std::size_t now, std::size_t added, std::size_t deleted) {
  return {deleted, now + deleted - added};
}

}  // namespace

// Tables are asked for only if something of them was deleted: they are loaded then.

Deletions deletions_of(const Site_Index::Net_Changes& net, Site_Index& site) {
  Deletions deletions;
  std::size_t added = 0;
  std::size_t deleted = 0;
  for (const auto& [id, change] : net.triggers) {
    added += change.stored ? 0 : 1;
    deleted += change.now ? 0 : 1;
  }
  if (deleted != 0) {
    deletions.triggers = count(site.triggers().count(), added, deleted);
  }
  if (!net.subscriptions.deleted.empty()) {  // none but topic subscriptions are added or deleted
    deletions.topic_subscriptions =
        count(site.subscriptions().count_topic_subscriptions(), net.subscriptions.added.size(),
              net.subscriptions.deleted.size());
  }
  return deletions;
}

}  // namespace kuv::vemora::embedded_server
