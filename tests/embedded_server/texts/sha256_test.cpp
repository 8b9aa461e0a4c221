// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/texts/sha256.h"

#include <gtest/gtest.h>

#include <string>

namespace kuv::test {
namespace {

using vemora::embedded_server::SHA256;

std::string digest_of(std::string_view bytes) {
  SHA256 digest;
  digest.add(bytes);
  return digest.finish();
}

// From the standard's own examples, and of sizes about a block's end.
TEST(SHA256_Test, is_the_standard_s_own) {
  EXPECT_EQ(digest_of(""), "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
  EXPECT_EQ(digest_of("abc"), "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
  EXPECT_EQ(digest_of("abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq"),
            "248d6a61d20638b8e5c026930c3e6039a33ce45964ff2167f6ecedd419db06c1");
  EXPECT_EQ(digest_of(std::string(1000000, 'a')),
            "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0");
}

std::string some_bytes(std::size_t size) {
  std::string bytes;
  for (std::size_t i = 0; i < size; ++i) {
    bytes += static_cast<char>(i * 7);
  }
  return bytes;
}

TEST(SHA256_Test, is_right_about_the_end_of_a_block) {
  EXPECT_EQ(digest_of(some_bytes(55)),
            "576a1bf8d4478657e6dc4af9398544765c2a92cde28478b019235cfed315fc09");
  EXPECT_EQ(digest_of(some_bytes(56)),
            "9b20501dfd1d99161c257950f3444f3e49230c351c5c8e0943ef369f85f5205d");
  EXPECT_EQ(digest_of(some_bytes(63)),
            "30b345906b493f06f69444b6521113511c242f30e29840462950035043682f1e");
  EXPECT_EQ(digest_of(some_bytes(64)),
            "d8bc63b4fc1156e5e7d95a418b9bf54cd3174bedbc2db40f74895349b229b3c0");
  EXPECT_EQ(digest_of(some_bytes(119)),
            "7a6589821178918ca8d9edaba5abfc1e9b2669564f4469b66885379c1530b2c8");
  EXPECT_EQ(digest_of(some_bytes(120)),
            "655250427d56b1b0eeb8497d21428704273458a01772d6881b65c0abac0f8a98");
}

TEST(SHA256_Test, does_not_depend_on_the_pieces) {
  for (std::size_t size = 0; size < 200; ++size) {
    const std::string bytes = some_bytes(size);
    const std::string whole = digest_of(bytes);
    for (const std::size_t piece : {std::size_t{1}, std::size_t{63}, std::size_t{64}}) {
      SHA256 digest;
      for (std::size_t begin = 0; begin < size; begin += piece) {
        digest.add(std::string_view(bytes).substr(begin, piece));
      }
      EXPECT_EQ(digest.finish(), whole) << size << " by " << piece;
    }
  }
}

}  // namespace
}  // namespace kuv::test
