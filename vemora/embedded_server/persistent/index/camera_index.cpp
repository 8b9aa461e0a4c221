// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/persistent/index/camera_index.h"

#include "records-odb.h"
#include "rows-odb.h"
#include "vemora/embedded_server/persistent/index/row_reader.h"

namespace kuv::vemora::embedded_server {
namespace {

Camera_Index::Camera_List load_cameras(odb::database& database,
                                       const std::shared_ptr<Capability_Store>& capabilities) {
  Camera_Index::Camera_List cameras;
  for_each_row<camera>(database, "id", [&](const camera& row) {
    auto record = std::make_shared<camera>(row);
    record->capabilities =
        Capability_Document([capabilities, id = row.id] { return capabilities->tree(id); });
    cameras.push_back(std::move(record));
  });
  return cameras;
}

}  // namespace

Camera_Index::Camera_Index(Camera_List cameras) : cameras_(std::move(cameras)) {
  sort_by(cameras_, [](const std::shared_ptr<camera>& record) { return record->id; });
  positions_.reserve(cameras_.size());
  for (std::size_t position = 0; position < cameras_.size(); ++position) {
    positions_.emplace(cameras_[position]->id, position);
    for (const auto& [name, info] : cameras_[position]->tags) {
      tags_.add(name, info.value, position);
    }
  }
}

Camera_Index Camera_Index::load(odb::database& database, Capability_Guard guard) {
  const auto capabilities = std::make_shared<Capability_Store>(database, std::move(guard));
  Camera_Index index(load_cameras(database, capabilities));
  index.capabilities_ = capabilities;
  index.load_tags(database);
  return index;
}

void Camera_Index::load_tags(odb::database& database) {
  for_each_row<rows::Camera_Tag>(database, "record_id, name", [&](const rows::Camera_Tag& row) {
    const auto found = positions_.find(row.key.record_id);
    if (found != positions_.end()) {
      cameras_[found->second]->tags[row.key.name].value = row.value;
      tags_.add(row.key.name, row.value, found->second);
    }
  });
}

std::shared_ptr<camera> Camera_Index::find(std::uint64_t id) const {
  const auto found = positions_.find(id);
  return found == positions_.end() ? nullptr : cameras_[found->second];
}

bool Camera_Index::has_readable_capabilities(std::uint64_t id) const {
  return !capabilities_ || capabilities_->is_readable(id);
}

Camera_Index::Camera_List Camera_Index::matching(
    const std::set<ODB_Utils::Tag_Search_Term>& terms) const {
  if (terms.empty()) {
    return cameras_;
  }
  Camera_List found;
  for (const std::size_t position : tags_.find_any(terms)) {
    found.push_back(cameras_[position]);
  }
  return found;
}

}  // namespace kuv::vemora::embedded_server
