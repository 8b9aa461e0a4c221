// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/persistent/engine/link_tiles.h"

#include <gmock/gmock.h>

#include <tuple>

#include "vemora/embedded_server/persistent/mapping/rows.h"

namespace kuv::test {
namespace {

using namespace kuv::vemora::embedded_server;
using Link = vemora::rows::Subscription_Trigger;

std::pair<std::uint64_t, std::uint64_t> pair_of(const Link& link) {
  return {link.key.record_id, link.key.linked_id};
}

std::vector<std::pair<std::uint64_t, std::uint64_t>> pairs_of(const std::vector<Link>& links) {
  std::vector<std::pair<std::uint64_t, std::uint64_t>> pairs;
  for (const Link& link : links) {
    pairs.push_back(pair_of(link));
  }
  return pairs;
}

TEST(Link_Tiles, keep_the_order_of_links_to_few) {
  std::vector<Link> links;
  for (std::uint64_t record = 1; record <= 3; ++record) {
    for (std::uint64_t linked = 1; linked <= ids_of_a_tile; ++linked) {
      links.push_back({{record, linked}});
    }
  }

  EXPECT_EQ(pairs_of(in_tiles(links)), pairs_of(links));
}

TEST(Link_Tiles, have_all_links_to_some_before_those_to_others) {
  constexpr std::uint64_t tiles = 3;
  constexpr std::uint64_t offset = ~std::uint64_t{0} - 1000;  // ids may be as large as they like
  std::vector<Link> links;
  for (std::uint64_t record = 1; record <= 5; ++record) {
    for (std::uint64_t linked = 0; linked < tiles * ids_of_a_tile - 1; ++linked) {
      if ((record + linked) % 3 != 0 || record == 1) {
        links.push_back({{record, offset + linked}});
      }
    }
  }
  const auto tile_of = [](const Link& link) {
    return (link.key.linked_id - offset) / ids_of_a_tile;
  };
  std::vector<Link> wanted = links;
  std::stable_sort(wanted.begin(), wanted.end(), [&](const Link& left, const Link& right) {
    return tile_of(left) < tile_of(right);
  });

  EXPECT_NE(pairs_of(wanted), pairs_of(links));
  EXPECT_EQ(pairs_of(in_tiles(links)), pairs_of(wanted));
}

TEST(Link_Tiles, of_no_links_are_none) {
  EXPECT_TRUE(in_tiles(std::vector<Link>()).empty());
}

}  // namespace
}  // namespace kuv::test
