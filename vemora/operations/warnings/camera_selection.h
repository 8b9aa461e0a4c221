// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>

#include "vemora/embedded_server/persistent/database.h"
#include "vemora/operations/warnings/nearest_name.h"
#include "vemora/platform/repositories/repository.h"

namespace kuv::vemora::operations {

/// What the cameras that a filter selects are good for. Each question of a filter is asked once.
class Camera_Selections {
 public:
  using Terms = std::set<ODB_Utils::Tag_Search_Term>;

  /// In a pass, what is subscribed is looked at before what cameras support; else the other way
  /// round. Either is enough, and either may have to be read first.
  Camera_Selections(std::shared_ptr<embedded_server::Database> database, Repository& repository,
                    bool in_pass)
      : database_(std::move(database)), repository_(repository), in_pass_(in_pass) {}

  /// The selection of a filter; without terms, all cameras.
  class Selection;
  Selection of(const Terms& terms);

 private:
  using Cameras = Camera_Repository::Camera_List;

  struct Topic {
    bool is_heard;        ///< or may be
    std::string nearest;  ///< one that is supported, where this one is not heard
  };

  /// What is known of the cameras of one filter. The cameras themselves are not kept: thousands of
  /// filters may select thousands of cameras each.
  struct Known {
    std::size_t count = 0;
    std::optional<bool> detects_objects;
    std::optional<bool> detects_motion;
    std::map<std::string, Topic> topics;
  };

  const Cameras& cameras_of(const Terms& terms);
  bool is_subscribed(const Cameras& cameras, const std::string& topic);
  bool may_be_supported(const Cameras& cameras, const std::string& topic);
  bool is_readable(const camera& record);
  Topic judged(const Cameras& cameras, const std::string& topic);
  std::string nearest_topic(const Cameras& cameras, const std::string& topic);

  std::shared_ptr<embedded_server::Database> database_;
  Repository& repository_;
  bool in_pass_;
  std::map<Terms, Known> known_;
  std::optional<Terms> last_terms_;
  Cameras last_cameras_;
  std::map<std::uint64_t, bool> readable_;  ///< the capabilities of a camera
  Comparison_Budget budget_;
};

class Camera_Selections::Selection {
 public:
  std::size_t count() const { return known_.count; }

  // Whether at least one of the cameras does.
  bool detects_objects();
  bool detects_motion();

  /// Supports the topic, or has a subscription to it already. True as well if that is not known,
  /// because the capabilities of a camera cannot be read.
  bool may_hear(const std::string& topic) { return judged(topic).is_heard; }

  /// A topic that one of them supports and that is like this one, which none hears; may be empty.
  const std::string& nearest_topic(const std::string& topic) { return judged(topic).nearest; }

 private:
  friend class Camera_Selections;
  Selection(Camera_Selections& all, const Terms& terms, Known& known)
      : all_(all), terms_(terms), known_(known) {}

  const Topic& judged(const std::string& topic);

  Camera_Selections& all_;
  const Terms& terms_;
  Known& known_;
};

}  // namespace kuv::vemora::operations
