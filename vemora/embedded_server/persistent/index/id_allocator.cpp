#include "vemora/embedded_server/persistent/index/id_allocator.h"

#include "rows-odb.h"

namespace kuv::vemora::embedded_server {

Id_Allocator::Id_Allocator(odb::database& database, std::string kind)
    : database_(database), kind_(std::move(kind)) {
  rows::Id_Allocation row;
  if (database_.find(kind_, row)) {
    stored_ = row.next_id;
    next_ = row.next_id;
  }
}

void Id_Allocator::save() {
  rows::Id_Allocation row;
  row.kind = kind_;
  row.next_id = next_;
  if (!stored_) {
    if (next_ != 1) {
      database_.persist(row);
      stored_ = next_;
    }
  } else if (*stored_ != next_) {
    database_.update(row);
    stored_ = next_;
  }
}

}  // namespace kuv::vemora::embedded_server
