#include "embedded_server/persistent/pass/verify_index.h"

#include <fmt/format.h>

#include <odb/database.hxx>
#include <odb/transaction.hxx>
#include <stdexcept>

#include "embedded_server/persistent/index/record_links.h"

namespace kuv::vemora::embedded_server {
namespace {

void require_same(bool same, const char* what, std::uint64_t id) {
  if (!same) {
    throw std::logic_error(
        fmt::format("the index of the pass and the database differ: {} {}", what, id));
  }
}

template <class Records>
void compare_links(const char* what, const Records& seen, const Records& stored) {
  require_same(seen.size() == stored.size(), what, seen.size());
  for (std::size_t place = 0; place < seen.size(); ++place) {
    require_same(seen[place]->id == stored[place]->id, what, seen[place]->id);
    require_same(held_ids(*seen[place]) == held_ids(*stored[place]), what, seen[place]->id);
  }
}

void compare_triggers(const std::vector<std::shared_ptr<trigger>>& seen,
                      const std::vector<std::shared_ptr<trigger>>& stored) {
  require_same(seen.size() == stored.size(), "triggers", seen.size());
  for (std::size_t place = 0; place < seen.size(); ++place) {
    const trigger& left = *seen[place];
    const trigger& right = *stored[place];
    require_same(left.id == right.id && left.name == right.name &&
                     left.sources.size() == right.sources.size() &&
                     left.schedules.size() == right.schedules.size(),
                 "trigger", left.id);
  }
}

}  // namespace

void verify_index(odb::database& database, Site_Index& seen) {
  odb::transaction transaction(database.begin());
  Site_Index stored(database, nullptr);
  compare_triggers(seen.triggers().all(), stored.triggers().all());
  compare_links("subscription", seen.subscriptions().all(), stored.subscriptions().all());
  compare_links("detection record", seen.eta_cameras().all(), stored.eta_cameras().all());
  transaction.commit();
}

}  // namespace kuv::vemora::embedded_server
