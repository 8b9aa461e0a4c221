// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "tools/vemora-triggers/render/camera_list.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <cstddef>
#include <set>
#include <utility>

#include "vemora/embedded_server/texts/printable.h"

namespace kuv::vemora::tools {
namespace {

using Ids = std::set<std::uint64_t>;
using Cameras_By_Tag = std::map<std::string, Ids>;

/// More names than this nobody reads in a line.
constexpr std::size_t most_names = 8;

/// A tag that few cameras share says no more than their names.
constexpr std::size_t fewest_of_a_tag = 3;

std::string tag_text(const std::string& name, const Tag_Info& info) {
  return info.value ? name + "=" + *info.value : name;
}

Cameras_By_Tag cameras_by_tag(const Named_Cameras& site) {
  Cameras_By_Tag by_tag;
  for (const auto& [id, camera] : site) {
    for (const auto& [name, info] : camera.tags) {
      by_tag[tag_text(name, info)].insert(id);
    }
  }
  return by_tag;
}

std::size_t count_common(const Ids& left, const Ids& right) {
  return static_cast<std::size_t>(std::count_if(
      left.begin(), left.end(), [&right](std::uint64_t id) { return right.count(id) != 0; }));
}

/// The tag that tells most of the cameras that are not told yet.
Cameras_By_Tag::const_iterator best_of(const Cameras_By_Tag& by_tag, const Ids& untold) {
  auto best = by_tag.end();
  std::size_t most = fewest_of_a_tag - 1;
  for (auto tag = by_tag.begin(); tag != by_tag.end(); ++tag) {
    const std::size_t told = count_common(tag->second, untold);
    if (told > most) {
      most = told;
      best = tag;
    }
  }
  return best;
}

std::string told_by(const std::string& tag, const Ids& tagged, const Ids& cameras) {
  const std::size_t count = count_common(tagged, cameras);
  const std::string name = embedded_server::printable(tag);
  return count == tagged.size() ? fmt::format("all {} with {}", count, name)
                                : fmt::format("{} of {} with {}", count, tagged.size(), name);
}

/// Takes those out of `untold` that it tells. A camera is told once.
void tell_by_tags(const Cameras_By_Tag& by_tag, const Ids& cameras, Ids& untold,
                  std::vector<std::string>& parts) {
  while (untold.size() > most_names) {
    const auto best = best_of(by_tag, untold);
    if (best == by_tag.end()) {
      return;
    }
    parts.push_back(told_by(best->first, best->second, cameras));
    for (const std::uint64_t id : best->second) {
      untold.erase(id);
    }
  }
}

/// Tags of which no other camera has one come first: they say it best.
std::vector<std::string> told_by_tags(const Named_Cameras& site, Ids& untold) {
  const Ids cameras = untold;
  const Cameras_By_Tag by_tag = cameras_by_tag(site);
  Cameras_By_Tag of_no_others;
  for (const auto& [tag, tagged] : by_tag) {
    if (count_common(tagged, cameras) == tagged.size()) {
      of_no_others.emplace(tag, tagged);
    }
  }
  std::vector<std::string> parts;
  tell_by_tags(of_no_others, cameras, untold, parts);
  tell_by_tags(by_tag, cameras, untold, parts);
  return parts;
}

}  // namespace

std::string camera_text(const Named_Cameras& site, std::uint64_t id) {
  const auto found = site.find(id);
  return found == site.end()
             ? std::to_string(id)
             : fmt::format("{} \"{}\"", id, embedded_server::printable(found->second.name));
}

std::string camera_list(const Named_Cameras& site, const std::vector<std::uint64_t>& ids) {
  Ids untold(ids.begin(), ids.end());
  std::vector<std::string> parts = told_by_tags(site, untold);
  std::size_t named = 0;
  for (const std::uint64_t id : untold) {
    if (named++ == most_names) {
      parts.push_back(fmt::format("and {} more", untold.size() - most_names));
      break;
    }
    parts.push_back(camera_text(site, id));
  }
  return fmt::format("{}", fmt::join(parts, ", "));
}

}  // namespace kuv::vemora::tools
