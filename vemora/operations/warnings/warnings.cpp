// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/operations/warnings/warnings.h"

#include <utility>
#include <vector>

#include "vemora/operations/warnings/empty_selections.h"
#include "vemora/operations/warnings/foreign_bytes.h"
#include "vemora/operations/warnings/found_warnings.h"
#include "vemora/operations/warnings/judged_triggers.h"
#include "vemora/operations/warnings/mapping_faults.h"
#include "vemora/operations/warnings/schedule_look_up.h"
#include "vemora/operations/warnings/unknown_keys.h"
#include "vemora/operations/warnings/unstorable_texts.h"
#include "vemora/operations/warnings/unusable_schedules.h"
#include "vemora/operations/warnings/unusable_sources.h"
#include "vemora/operations/warnings/wrapped_durations.h"

namespace kuv::vemora::operations {
namespace {

using embedded_server::Database;
using embedded_server::Document_Warning;
using embedded_server::Read_Documents;

class Warner {
 public:
  Warner(std::shared_ptr<Database> database, std::uint64_t server_id)
      : database_(std::move(database)),
        server_id_(server_id),
        repository_(make_repository(database_)) {}

  std::vector<Document_Warning> operator()(const Read_Documents& documents) const {
    const std::shared_ptr<server> here = repository_->servers().get_by_id(server_id_);
    const std::vector<Judged_Trigger> triggers =
        judged_triggers(documents, here ? here->tags : Tag_Map());
    Found_Warnings found(documents);
    warn_of_unknown_keys(documents, triggers, found);
    warn_of_wrapped_durations(documents, found);
    if (documents.are_valid) {
      warn_of_what_the_site_lacks(documents, triggers, found);
    }
    warn_of_foreign_bytes(documents, triggers, found);
    return found.take();
  }

 private:
  void warn_of_what_the_site_lacks(const Read_Documents& documents,
                                   const std::vector<Judged_Trigger>& triggers,
                                   Found_Warnings& found) const {
    warn_of_unstorable_texts(database_, triggers, found);
    warn_of_sources(database_, triggers, found);
    Schedule_Look_Up schedules(*repository_);
    warn_of_unusable_schedules(schedules, triggers, found);
    warn_of_mapping(documents, schedules, triggers, found);
    warn_of_empty_selections(documents, database_, *repository_, triggers, found);
  }

  std::shared_ptr<Database> database_;
  std::uint64_t server_id_;
  std::shared_ptr<Repository> repository_;
};

}  // namespace

embedded_server::Judge_Documents warn_of_documents(std::shared_ptr<Database> database,
                                                   std::uint64_t server_id) {
  return Warner(std::move(database), server_id);
}

}  // namespace kuv::vemora::operations
