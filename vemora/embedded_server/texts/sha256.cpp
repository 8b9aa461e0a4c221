// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/texts/sha256.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstring>

namespace kuv::vemora::embedded_server {
namespace {

using Word = std::uint32_t;

constexpr std::array<Word, 64> round_constants{
    0x428a2f98, 0x71374491, 0xb5c0fbcf, 0xe9b5dba5, 0x3956c25b, 0x59f111f1, 0x923f82a4, 0xab1c5ed5,
    0xd807aa98, 0x12835b01, 0x243185be, 0x550c7dc3, 0x72be5d74, 0x80deb1fe, 0x9bdc06a7, 0xc19bf174,
    0xe49b69c1, 0xefbe4786, 0x0fc19dc6, 0x240ca1cc, 0x2de92c6f, 0x4a7484aa, 0x5cb0a9dc, 0x76f988da,
    0x983e5152, 0xa831c66d, 0xb00327c8, 0xbf597fc7, 0xc6e00bf3, 0xd5a79147, 0x06ca6351, 0x14292967,
    0x27b70a85, 0x2e1b2138, 0x4d2c6dfc, 0x53380d13, 0x650a7354, 0x766a0abb, 0x81c2c92e, 0x92722c85,
    0xa2bfe8a1, 0xa81a664b, 0xc24b8b70, 0xc76c51a3, 0xd192e819, 0xd6990624, 0xf40e3585, 0x106aa070,
    0x19a4c116, 0x1e376c08, 0x2748774c, 0x34b0bcb5, 0x391c0cb3, 0x4ed8aa4a, 0x5b9cca4f, 0x682e6ff3,
    0x748f82ee, 0x78a5636f, 0x84c87814, 0x8cc70208, 0x90befffa, 0xa4506ceb, 0xbef9a3f7, 0xc67178f2};

constexpr Word rotated(Word word, unsigned by) {
  return (word >> by) | (word << (32 - by));
}

std::array<Word, 64> schedule_of(const unsigned char* block) {
  std::array<Word, 64> words{};
  for (std::size_t i = 0; i < 16; ++i) {
    words[i] = Word{block[4 * i]} << 24 | Word{block[4 * i + 1]} << 16 |
               Word{block[4 * i + 2]} << 8 | Word{block[4 * i + 3]};
  }
  for (std::size_t i = 16; i < words.size(); ++i) {
    const Word early = words[i - 15];
    const Word late = words[i - 2];
    words[i] = words[i - 16] + (rotated(early, 7) ^ rotated(early, 18) ^ (early >> 3)) +
               words[i - 7] + (rotated(late, 17) ^ rotated(late, 19) ^ (late >> 10));
  }
  return words;
}

}  // namespace

void SHA256::add(std::string_view bytes) {
  total_size_ += bytes.size();
  while (!bytes.empty()) {
    const std::size_t taken = std::min(bytes.size(), block_size - open_size_);
    std::memcpy(open_.data() + open_size_, bytes.data(), taken);
    open_size_ += taken;
    bytes.remove_prefix(taken);
    if (open_size_ == block_size) {
      add_block(open_.data());
      open_size_ = 0;
    }
  }
}

void SHA256::add_block(const unsigned char* block) {
  const std::array<Word, 64> words = schedule_of(block);
  auto [a, b, c, d, e, f, g, h] = state_;
  for (std::size_t i = 0; i < words.size(); ++i) {
    const Word first = h + (rotated(e, 6) ^ rotated(e, 11) ^ rotated(e, 25)) +
                       ((e & f) ^ (~e & g)) + round_constants[i] + words[i];
    const Word second =
        (rotated(a, 2) ^ rotated(a, 13) ^ rotated(a, 22)) + ((a & b) ^ (a & c) ^ (b & c));
    h = g;
    g = f;
    f = e;
    e = d + first;
    d = c;
    c = b;
    b = a;
    a = first + second;
  }
  const std::array<Word, 8> mixed{a, b, c, d, e, f, g, h};
  for (std::size_t i = 0; i < state_.size(); ++i) {
    state_[i] += mixed[i];
  }
}

/// One bit, zeros up to the end of a block, and there the size in bits.
std::string SHA256::finish() {
  const std::uint64_t bits = total_size_ * 8;
  const std::size_t end = open_size_ < block_size - 8 ? block_size : 2 * block_size;
  std::string padding(end - open_size_, '\0');
  padding.front() = static_cast<char>(0x80);
  for (std::size_t i = 0; i < 8; ++i) {
    padding[padding.size() - 1 - i] = static_cast<char>(bits >> (8 * i) & 0xff);
  }
  add(padding);
  std::string digest;
  for (const Word word : state_) {
    digest += fmt::format("{:08x}", word);
  }
  return digest;
}

}  // namespace kuv::vemora::embedded_server
