#include "vemora/embedded_server/persistent/index/camera_index.h"

#include "records-odb.h"
#include "rows-odb.h"
#include "vemora/embedded_server/persistent/index/row_reader.h"

namespace kuv::vemora::embedded_server {

Camera_Index::Camera_Index(odb::database& database, Capability_Guard guard) {
  load_cameras(database, std::move(guard));
  load_tags(database);
}

void Camera_Index::load_cameras(odb::database& database, Capability_Guard guard) {
  const auto capabilities = std::make_shared<Capability_Store>(database, std::move(guard));
  for_each_row<camera>(database, "id", [&](const camera& row) {
    auto record = std::make_shared<camera>(row);
    record->capabilities =
        Capability_Document([capabilities, id = row.id] { return capabilities->tree(id); });
    cameras_.push_back(std::move(record));
  });
  sort_by(cameras_, [](const std::shared_ptr<camera>& record) { return record->id; });
  places_.reserve(cameras_.size());
  for (std::size_t place = 0; place < cameras_.size(); ++place) {
    places_.emplace(cameras_[place]->id, place);
  }
}

void Camera_Index::load_tags(odb::database& database) {
  for_each_row<rows::Camera_Tag>(database, "record_id, name", [&](const rows::Camera_Tag& row) {
    const auto found = places_.find(row.key.record_id);
    if (found != places_.end()) {
      cameras_[found->second]->tags[row.key.name].value = row.value;
      tags_.add(row.key.name, row.value, found->second);
    }
  });
}

std::shared_ptr<camera> Camera_Index::find(std::uint64_t id) const {
  const auto found = places_.find(id);
  return found == places_.end() ? nullptr : cameras_[found->second];
}

Camera_Index::Camera_List Camera_Index::matching(
    const std::set<ODB_Utils::Tag_Search_Term>& terms) const {
  if (terms.empty()) {
    return cameras_;
  }
  Camera_List found;
  for (const std::size_t place : tags_.find_any(terms)) {
    found.push_back(cameras_[place]);
  }
  return found;
}

}  // namespace kuv::vemora::embedded_server
