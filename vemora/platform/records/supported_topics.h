// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <boost/property_tree/ptree.hpp>
#include <string>

#include "vemora/platform/records/camera.h"

namespace kuv::vemora {

/// The topics that the camera's topic filter supports, as the keys of the children; no children
/// where it says nothing. Valid as long as the camera's capabilities are.
inline const Capability_Document::Tree& supported_topics(const camera& record) {
  using Tree = Capability_Document::Tree;
  static const Tree none;
  const auto found = record.capabilities.tree().get_child_optional(
      Tree::path_type("Metadata.Mode.capabilities.On.TopicFilter.capabilities", '.'));
  return found ? *found : none;
}

/// Whether the topic is among them. Topics hold dots and slashes: each is one key, compared whole
/// and byte for byte, and never a path.
inline bool is_supported(const Capability_Document::Tree& topics, const std::string& topic) {
  return topics.find(topic) != topics.not_found();
}

}  // namespace kuv::vemora
