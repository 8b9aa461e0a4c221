// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "vemora/platform/export.h"

namespace kuv::vemora::embedded_server {

/// The digest SHA-256 (FIPS 180-4) of bytes that come piece by piece.
class VEMORA_API SHA256 {
 public:
  /// The next piece.
  void add(std::string_view bytes);

  /// The digest as 64 hexadecimal digits. Nothing can be added after it.
  std::string finish();

 private:
  static constexpr std::size_t block_size = 64;

  void add_block(const unsigned char* block);

  std::array<std::uint32_t, 8> state_{0x6a09e667, 0xbb67ae85, 0x3c6ef372, 0xa54ff53a,
                                      0x510e527f, 0x9b05688c, 0x1f83d9ab, 0x5be0cd19};
  std::array<unsigned char, block_size> open_{};  ///< a block that is not full yet
  std::size_t open_size_ = 0;
  std::uint64_t total_size_ = 0;
};

}  // namespace kuv::vemora::embedded_server
