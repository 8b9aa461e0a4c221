// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <cstddef>
#include <cstdint>

namespace kuv::vemora::embedded_server {

/// Another number in each process, that nobody can foretell.
extern const std::uint64_t id_hash_seed;

/// Hashes ids that come from documents: to be given to every hash table of them. The standard hash
/// of a number is the number itself, so that whoever chooses ids could have them all meet in one
/// bucket, and each look-up search through all of them. Texts are kept in order instead.
struct Id_Hash {
  std::size_t operator()(std::uint64_t id) const noexcept {
    std::uint64_t mixed = id ^ id_hash_seed;
    mixed = (mixed ^ (mixed >> 30U)) * 0xBF58476D1CE4E5B9U;
    mixed = (mixed ^ (mixed >> 27U)) * 0x94D049BB133111EBU;
    return mixed ^ (mixed >> 31U);
  }
};

}  // namespace kuv::vemora::embedded_server
