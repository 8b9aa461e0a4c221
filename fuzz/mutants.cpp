// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "fuzz/mutants.h"

#include <json/writer.h>

#include <string>
#include <vector>

#include "fuzz/sample_documents.h"
#include "fuzz/text_mutations.h"
#include "fuzz/tree_mutations.h"
#include "fuzz/valid_variations.h"

namespace kuv::fuzz {
namespace {

std::string to_text(const Json::Value& value) {
  Json::StreamWriterBuilder builder;
  builder["indentation"] = "";
  return Json::writeString(builder, value);
}

void mutate_a_text(Documents& documents, Random& random) {
  mutate_text(random.chance(70) ? documents.configuration : documents.mapping, random);
}

/// A change in the tree breaks the documents more often than not.
const std::vector<std::uint64_t>& how_many_changes() {
  static const std::vector<std::uint64_t> numbers{0, 0, 1, 1, 1, 1, 1, 1, 2, 2};
  return numbers;
}

}  // namespace

Mutant make_mutant(std::uint64_t seed, std::uint64_t number) {
  Random random(seed * 0x9E3779B97F4A7C15U + number);
  Json::Value configuration = sample_configuration(random);
  Json::Value mapping = sample_mapping(random);
  for (auto variations = 1 + random.below(2); variations > 0; --variations) {
    vary_validly(configuration, mapping, random);
  }
  const bool in_text = random.chance(15);
  const std::uint64_t changes = in_text ? 0 : random.pick(how_many_changes());
  for (std::uint64_t change = 0; change < changes; ++change) {
    mutate_tree(random.chance(80) ? configuration : mapping, random);
  }
  Mutant mutant;
  mutant.documents = {to_text(configuration), to_text(mapping), !random.chance(2)};
  mutant.is_valid = !in_text && changes == 0 && mutant.documents.server_is_known;
  if (in_text) {
    mutate_a_text(mutant.documents, random);
  }
  return mutant;
}

}  // namespace kuv::fuzz
