#pragma once

#include <algorithm>
#include <cstdint>
#include <map>
#include <memory>
#include <set>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "vemora/embedded_server/persistent/index/id_hash.h"
#include "vemora/embedded_server/persistent/index/id_order.h"
#include "vemora/embedded_server/persistent/index/link_journal.h"
#include "vemora/embedded_server/persistent/index/record_links.h"
#include "vemora/embedded_server/persistent/index/row_reader.h"
#include "vemora/embedded_server/persistent/index/trigger_index.h"

namespace kuv::vemora::embedded_server {

/// One kind of record that holds triggers, as a pass sees it: by id, and by trigger held. There is
/// one object a record; whoever asks for it gets that one.
template <class Record>
class Linked_Records {
 public:
  struct Entry {
    std::shared_ptr<Record> record;
    std::uint64_t mark = 0;  ///< see mark_holders
  };

  using Entry_List = std::vector<Entry*>;

  std::map<std::uint64_t, Entry>& all() { return entries_; }

  /// Null when there is none.
  Entry* find(std::uint64_t id) {
    const auto found = entries_.find(id);
    return found == entries_.end() ? nullptr : &found->second;
  }

  /// A record that the database holds already; its links follow by load_links.
  Entry& load(std::shared_ptr<Record> record) {
    const std::uint64_t id = record->id;
    return entries_.emplace_hint(entries_.end(), id, Entry{std::move(record)})->second;
  }

  /// The links that the database holds already, when all records are loaded.
  template <class Row>
  void load_links(odb::database& database, const Trigger_Index& triggers) {
    Holder_Lists lists = holder_lists(triggers);
    std::vector<std::shared_ptr<trigger>> held;  // of one record: its rows come together
    Entry* entry = nullptr;
    const auto finish = [&] {
      if (entry != nullptr) {
        set_links(*entry->record, held);
      }
      held.clear();
    };
    for_each_row<Row>(database, "record_id, linked_id", [&](const Row& row) {
      if (entry == nullptr || entry->record->id != row.key.record_id) {
        finish();
        entry = find(row.key.record_id);
      }
      const auto list = lists.find(row.key.linked_id);
      if (entry == nullptr || list == lists.end()) {
        // A deleted trigger may have left rows behind that nobody wrote in a pass.
        journal_.note_dropped(row.key.record_id, row.key.linked_id);
        return;
      }
      held.push_back(list->second.record);
      list->second.holders->push_back(entry);
    });
    finish();
  }

  /// A new record with all its links.
  Entry& insert(const std::shared_ptr<Record>& added) {
    Entry& entry = entries_[added->id];
    entry.record = added;
    for (const std::uint64_t trigger_id : held_ids(*added)) {
      journal_.note_added(added->id, trigger_id);
      holders_[trigger_id].push_back(&entry);
    }
    added->link_changes = {};
    return entry;
  }

  /// Takes over the links that were added to and removed from a record. False where the record or
  /// one of the triggers added is not stored; the changes are forgotten then.
  template <class Find_Trigger>
  bool update(const std::shared_ptr<Record>& changed, Find_Trigger find_trigger) {
    Entry* const entry = find(changed->id);
    if (entry == nullptr) {
      return false;
    }
    std::vector<std::shared_ptr<trigger>> added;
    for (const std::uint64_t trigger_id : changed->link_changes.added) {
      added.push_back(find_trigger(trigger_id));
    }
    if (std::count(added.begin(), added.end(), nullptr) != 0) {
      if (entry->record == changed) {
        restore(*entry, find_trigger);
      }
      return false;
    }
    take_over(*entry, *changed, added);
    return true;
  }

  /// Puts a fresh record of a trigger in the place of one that carries refused changes.
  void replace_trigger(const std::shared_ptr<trigger>& fresh) {
    for (Entry* const entry : holders(fresh->id)) {
      replace_link(*entry->record, fresh);
    }
  }

  /// Takes triggers that are being deleted off every record.
  void drop_triggers(const std::set<std::uint64_t>& dead) {
    Entry_List affected;
    for (const std::uint64_t trigger_id : dead) {
      const Entry_List held = holders(trigger_id);
      affected.insert(affected.end(), held.begin(), held.end());
      holders_.erase(trigger_id);
    }
    sort_unique_by(affected, [](const Entry* entry) { return entry->record->id; });
    for (Entry* const entry : affected) {
      for (const std::uint64_t trigger_id : remove_links(*entry->record, dead)) {
        journal_.note_dropped(entry->record->id, trigger_id);
      }
    }
  }

  /// Takes away the records that `goes` says yes to, which held nothing when they were handed over
  /// last; `before` is told each.
  template <class Goes, class Before>
  void erase_if(Goes goes, Before before) {
    tidy_all();  // no list may lead to a record that is gone
    for (auto place = entries_.begin(); place != entries_.end();) {
      const std::shared_ptr<Record> record = place->second.record;
      if (!goes(*record)) {
        ++place;
        continue;
      }
      before(record);
      place = entries_.erase(place);
    }
  }

  /// The records that hold a trigger, ascending by id.
  const Entry_List& holders(std::uint64_t trigger_id) {
    static const Entry_List nobody;
    const auto found = holders_.find(trigger_id);
    if (found == holders_.end()) {
      return nobody;
    }
    tidy(trigger_id, found->second);
    return found->second;
  }

  /// Marks the records that hold a trigger; is_marked then tells them at no cost, until the next
  /// call.
  void mark_holders(std::uint64_t trigger_id) {
    ++last_mark_;
    for (Entry* const entry : holders(trigger_id)) {
      entry->mark = last_mark_;
    }
  }
  bool is_marked(const Entry& entry) const { return entry.mark == last_mark_; }

  Link_Journal::Net_Changes settle() { return journal_.settle(); }

 private:
  /// What is looked up for each link that is read.
  struct Holder_List {
    std::shared_ptr<trigger> record;
    Entry_List* holders;
  };
  using Holder_Lists = std::unordered_map<std::uint64_t, Holder_List, Id_Hash>;

  Holder_Lists holder_lists(const Trigger_Index& triggers) {
    Holder_Lists lists;
    for (const std::shared_ptr<trigger>& record : triggers.all()) {
      lists.emplace(record->id, Holder_List{record, &holders_[record->id]});
    }
    return lists;
  }

  void take_over(Entry& entry, Record& changed,
                 const std::vector<std::shared_ptr<trigger>>& added) {
    const std::vector<std::uint64_t> removed = std::move(changed.link_changes.removed);
    changed.link_changes = {};
    const bool same_object = &changed == entry.record.get();
    for (const std::shared_ptr<trigger>& record : added) {
      if (same_object || entry.record->add_trigger(record)) {
        journal_.note_added(changed.id, record->id);
        holders_[record->id].push_back(&entry);
      }
    }
    for (const std::uint64_t trigger_id : removed) {
      if (same_object || entry.record->remove_trigger(probe(trigger_id))) {
        journal_.note_removed(changed.id, trigger_id);
        untidy_.insert(trigger_id);
      }
    }
    entry.record->link_changes = {};
  }

  /// Forgets changes that were refused: from now on a fresh record without them stands for it.
  template <class Find_Trigger>
  void restore(Entry& entry, Find_Trigger find_trigger) {
    auto fresh = std::make_shared<Record>(*entry.record);
    const Trigger_Link_Changes refused = std::move(fresh->link_changes);
    for (const std::uint64_t trigger_id : refused.added) {
      fresh->remove_trigger(probe(trigger_id));
    }
    for (const std::uint64_t trigger_id : refused.removed) {
      if (const std::shared_ptr<trigger> held = find_trigger(trigger_id)) {
        fresh->add_trigger(held);
      }
    }
    fresh->link_changes = {};
    entry.record = std::move(fresh);
  }

  void tidy(std::uint64_t trigger_id, Entry_List& entries) {
    if (untidy_.erase(trigger_id) != 0) {
      const auto let_go = [trigger_id](const Entry* entry) {
        return !held_when_stored(*entry->record, trigger_id);
      };
      entries.erase(std::remove_if(entries.begin(), entries.end(), let_go), entries.end());
    }
    sort_unique_by(entries, [](const Entry* entry) { return entry->record->id; });
  }

  void tidy_all() {
    while (!untidy_.empty()) {
      const std::uint64_t trigger_id = *untidy_.begin();
      tidy(trigger_id, holders_[trigger_id]);
    }
  }

  std::map<std::uint64_t, Entry> entries_;
  std::unordered_map<std::uint64_t, Entry_List, Id_Hash> holders_;  ///< by trigger
  /// The triggers that were taken off records. A removal only leaves this note, so that many of
  /// them cost no search each.
  std::unordered_set<std::uint64_t, Id_Hash> untidy_;
  Link_Journal journal_;
  std::uint64_t last_mark_ = 0;
};

}  // namespace kuv::vemora::embedded_server
