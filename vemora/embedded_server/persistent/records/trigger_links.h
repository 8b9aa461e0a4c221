// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include "vemora/platform/odb_runtime.h"

#include <cstdint>
#include <memory>
#include <set>
#include <vector>

#include "vemora/platform/records/record_comparator.h"
#include "vemora/platform/records/trigger.h"

namespace kuv::vemora {

// The trigger links of a record, as each kind of record keeps them: a list of lazy links, or a set
// of records, both ascending by trigger id. Nothing is noted here: see link_changes.h.

using Trigger_Link = odb::lazy_shared_ptr<trigger>;
using Trigger_Link_List = std::vector<Trigger_Link>;
using Trigger_Set = std::set<std::shared_ptr<trigger>, ODB_Utils::Record_Comparator>;

/// The id of the trigger that a link leads to, loaded or not.
std::uint64_t id_of(const Trigger_Link& link);

struct Found_Link {
  Trigger_Link_List::iterator position;  ///< of the link, or of the one that it belongs before
  bool is_there;
};
Found_Link find_link(Trigger_Link_List& links, std::uint64_t trigger_id);

bool holds(const Trigger_Link_List& links, std::uint64_t trigger_id);

// Where the trigger is linked already, or is not linked, these do nothing.

void add_link(Trigger_Link_List& links, const std::shared_ptr<trigger>& added);
void add_link(Trigger_Set& links, const std::shared_ptr<trigger>& added);
void remove_link(Trigger_Link_List& links, std::uint64_t trigger_id);
void remove_link(Trigger_Set& links, std::uint64_t trigger_id);

}  // namespace kuv::vemora
