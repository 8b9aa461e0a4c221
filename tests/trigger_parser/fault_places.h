// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <cstddef>
#include <ostream>
#include <string>
#include <vector>

namespace kuv::test {

/// A document with one fault.
struct Fault_Sample {
  enum class Read_By { properties, mapping, triggers };

  std::string name;
  Read_By read_by;
  std::string text;    ///< of the document
  std::size_t offset;  ///< of the value that is wrong, or of the object that misses it
  std::string message;
};

std::ostream& operator<<(std::ostream& stream, const Fault_Sample& sample);

/// For every message of the parser and of the tags library, each kind of document that it is said
/// of.
const std::vector<Fault_Sample>& fault_samples();

}  // namespace kuv::test
