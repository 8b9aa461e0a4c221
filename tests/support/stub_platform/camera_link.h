// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include "vemora/platform/odb_runtime.h"

#include <cstdint>
#include <memory>

#include "vemora/platform/records/camera.h"

// The little that a link needs to know of a camera to answer its id without loading it; where there
// is a database the generated code says it.
namespace odb {

template <>
class access::object_traits<kuv::vemora::camera> {
 public:
  using object_type = kuv::vemora::camera;
  using pointer_type = std::shared_ptr<object_type>;
  using id_type = std::uint64_t;
  static const bool polymorphic = false;

  static id_type id(const object_type& camera) { return camera.id; }
};

}  // namespace odb

namespace kuv::test {

/// A link to the camera of that id which holds the id alone and no loaded record.
odb::lazy_shared_ptr<vemora::camera> unloaded_link(std::uint64_t camera_id);

}  // namespace kuv::test
