// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/persistent/index/id_hash.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <unordered_set>

namespace kuv::test {
namespace {

/// How many ids the fullest bucket of a hash table of these has.
template <class Hash>
std::size_t fullest_bucket(std::size_t count, std::uint64_t step) {
  std::unordered_set<std::uint64_t, Hash> ids;
  for (std::size_t number = 1; number <= count; ++number) {
    ids.insert(number * step);
  }
  std::size_t fullest = 0;
  for (std::size_t bucket = 0; bucket < ids.bucket_count(); ++bucket) {
    fullest = std::max(fullest, ids.bucket_size(bucket));
  }
  return fullest;
}

TEST(Ids_In_A_Hash_Table, do_not_meet_in_one_bucket_whoever_chose_them) {
  constexpr std::size_t count = 10000;
  std::unordered_set<std::uint64_t> grown;
  for (std::size_t number = 0; number < count; ++number) {
    grown.insert(number);
  }
  const std::uint64_t buckets = grown.bucket_count();

  EXPECT_EQ(fullest_bucket<std::hash<std::uint64_t>>(count, buckets), count);
  for (const std::uint64_t step :
       {std::uint64_t{1}, buckets, std::uint64_t{1} << 32U, std::uint64_t{1} << 48U}) {
    EXPECT_LE(fullest_bucket<vemora::embedded_server::Id_Hash>(count, step), 20) << step;
  }
}

}  // namespace
}  // namespace kuv::test
