// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <boost/property_tree/ptree.hpp>
#include <functional>
#include <memory>
#include <utility>

namespace kuv::vemora {

/// What a camera says it can do: a string-keyed property tree, fetched when first looked at and
/// kept from then on. Copies share the tree. Not thread-safe, as records are not.
class Capability_Document {
 public:
  /// Its child keys may hold dots and slashes: a topic is one key.
  using Tree = boost::property_tree::ptree;
  /// Fetches the tree; may throw.
  using Loader = std::function<std::shared_ptr<const Tree>()>;

  /// A camera that says nothing: an empty tree.
  Capability_Document() = default;
  /// A tree that is there already.
  explicit Capability_Document(std::shared_ptr<const Tree> tree) : tree_(std::move(tree)) {}
  /// `loader` is called once, at the first look; what it throws reaches the looker, and the next
  /// look calls it again. A null answer is an empty tree.
  explicit Capability_Document(Loader loader) : loader_(std::move(loader)) {}

  /// Valid as long as this object, or a copy of it, lives.
  const Tree& tree() const {
    if (!tree_ && loader_) {
      tree_ = loader_();
      loader_ = nullptr;
    }
    if (!tree_) {
      tree_ = std::make_shared<const Tree>();
    }
    return *tree_;
  }

 private:
  mutable std::shared_ptr<const Tree> tree_;
  mutable Loader loader_;
};

}  // namespace kuv::vemora
