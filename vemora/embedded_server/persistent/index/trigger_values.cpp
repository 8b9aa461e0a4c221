#include "vemora/embedded_server/persistent/index/trigger_values.h"

#include "vemora/trigger_parser/strict_equality.h"

namespace kuv::vemora::embedded_server {

bool same_values(const trigger& left, const trigger& right) {
  return left.name == right.name && strict_equality::same(left.sources, right.sources) &&
         strict_equality::same(left.schedules, right.schedules);
}

}  // namespace kuv::vemora::embedded_server
