// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/platform/records/record_comparator.h"

#include "vemora/platform/records/camera.h"
#include "vemora/platform/records/trigger.h"

namespace kuv::vemora::ODB_Utils {
namespace {

template <class Record>
bool comes_first(const std::shared_ptr<Record>& left, const std::shared_ptr<Record>& right) {
  if (!left || !right) {
    return !left && right;
  }
  return left->id < right->id;
}

}  // namespace

bool Record_Comparator::operator()(const std::shared_ptr<camera>& left,
                                   const std::shared_ptr<camera>& right) const {
  return comes_first(left, right);
}

bool Record_Comparator::operator()(const std::shared_ptr<trigger>& left,
                                   const std::shared_ptr<trigger>& right) const {
  return comes_first(left, right);
}

}  // namespace kuv::vemora::ODB_Utils
