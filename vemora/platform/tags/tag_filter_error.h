// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <cstddef>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "vemora/platform/errors/error_codes.h"
#include "vemora/platform/errors/vemora_error.h"
#include "vemora/platform/export.h"

namespace kuv::vemora {

/// A JSON tag filter that is none, with what is wrong in it and where. A tags library that throws
/// another error is understood as well; then no more is known than which filter it is about.
class VEMORA_API Tag_Filter_Error : public Backend_Error<std::runtime_error> {
 public:
  /// One thing that is wrong.
  struct Fault {
    std::string message;  ///< for people
    std::size_t offset;   ///< of the wrong value in its text (Json::Value::getOffsetStart)
  };

  /// At least one, in the order of the filter; the first one's message is what the error says.
  explicit Tag_Filter_Error(std::vector<Fault> faults)
      : Backend_Error<std::runtime_error>(faults.at(0).message, error_codes::invalid_document),
        faults_(std::make_shared<const std::vector<Fault>>(std::move(faults))) {}

  /// All that is wrong, in the order of the filter.
  const std::vector<Fault>& faults() const { return *faults_; }

 private:
  std::shared_ptr<const std::vector<Fault>> faults_;  ///< shared, so that a copy never throws
};

}  // namespace kuv::vemora
