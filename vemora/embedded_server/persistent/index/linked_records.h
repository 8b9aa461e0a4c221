// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <unordered_map>
#include <utility>
#include <vector>

#include "vemora/embedded_server/persistent/index/holder_list.h"
#include "vemora/embedded_server/persistent/index/id_allocator.h"
#include "vemora/embedded_server/persistent/index/id_hash.h"
#include "vemora/embedded_server/persistent/index/id_order.h"
#include "vemora/embedded_server/persistent/index/link_journal.h"
#include "vemora/embedded_server/persistent/index/links_by_record.h"
#include "vemora/embedded_server/persistent/index/record_links.h"
#include "vemora/embedded_server/persistent/index/row_reader.h"

namespace kuv::vemora::embedded_server {

/// One kind of record that holds triggers, as a pass sees it: by id, and by trigger held; and what
/// the pass did to them. There is one object a record; whoever asks for it gets that one.
///
/// Who holds which trigger is what was handed over last, by add() and update(): a record that was
/// changed in memory since then is still found, counted and deleted as it was.
template <class Record>
class Linked_Records {
 public:
  using Record_Pointer = std::shared_ptr<Record>;

  struct Entry {
    Record_Pointer record;
    std::size_t links = 0;  ///< how many holder lists name it
  };

  using Entries = std::map<std::uint64_t, Entry>;
  using Entry_List = std::vector<Entry*>;
  using Holders = Holder_List<Entry>;

  /// What the database does not hold yet, or holds no longer. Every list ascending by id.
  struct Net_Changes {
    std::vector<Record_Pointer> added;
    std::vector<Record_Pointer> deleted;
    /// Updated with other triggers, as far as they are there; not those that only lost deleted
    /// ones.
    std::vector<Record_Pointer> updated;
    Changes::Of<Changes::Link> links;
  };

  explicit Linked_Records(Id_Allocator ids) : ids_(std::move(ids)) {}

  Entries& entries() { return entries_; }
  const Entries& entries() const { return entries_; }

  /// Ascending by id.
  std::vector<Record_Pointer> all() const {
    std::vector<Record_Pointer> records;
    records.reserve(entries_.size());
    for (const auto& [id, entry] : entries_) {
      records.push_back(entry.record);
    }
    return records;
  }

  /// Null when there is none.
  Entry* find(std::uint64_t id) {
    const auto found = entries_.find(id);
    return found == entries_.end() ? nullptr : &found->second;
  }

  /// Who holds that trigger. The answer is good until records or triggers are deleted.
  const Holders& holders(std::uint64_t trigger_id) const {
    static const Holders nobody;
    const auto found = holders_.find(trigger_id);
    return found == holders_.end() ? nobody : found->second;
  }

  /// A record that the database holds already; its links follow by way of a Link_Loader.
  Entry& load(Record_Pointer record) {
    const std::uint64_t id = record->id;
    return entries_.emplace_hint(entries_.end(), id, Entry{std::move(record)})->second;
  }

  /// Takes the links that the database holds already, those of one trigger together, when all
  /// records are loaded.
  class Link_Loader {
   public:
    Link_Loader(Linked_Records& records, const std::vector<std::shared_ptr<trigger>>& triggers)
        : records_(records), triggers_(triggers), links_(records.entries_.size()) {
      for (std::size_t place = 0; place < triggers.size(); ++place) {
        const std::uint64_t id = triggers[place]->id;
        holdings_.emplace(id, Holding{place, &records.holders_[id]});
      }
      entries_.reserve(records.entries_.size());
      for (auto& [id, entry] : records.entries_) {
        entries_.push_back(&entry);
        ids_.push_back(id);
      }
    }

    void take(std::uint64_t record_id, std::uint64_t trigger_id) {
      if (trigger_id != trigger_id_) {
        const auto found = holdings_.find(trigger_id);
        holding_ = found == holdings_.end() ? nullptr : &found->second;
        trigger_id_ = trigger_id;
      }
      if (holding_ == nullptr || !find_record(record_id)) {
        // A deleted trigger may have left rows behind that nobody wrote in a pass.
        records_.journal_.note_dropped(record_id, trigger_id);
        return;
      }
      holding_->holders->append(record_id, entries_[record_]);
      links_.add(record_++, holding_->place);
    }

    /// To be called when all were taken.
    void finish() {
      links_.complete();
      std::vector<std::shared_ptr<trigger>> held;
      for (std::size_t record = 0; record < entries_.size(); ++record) {
        links_.for_each_trigger(record,
                                [&](std::size_t place) { held.push_back(triggers_[place]); });
        entries_[record]->links = held.size();
        set_links(*entries_[record]->record, held);
        held.clear();
      }
      for (auto& [id, holding] : holdings_) {
        holding.holders->complete();
      }
    }

   private:
    /// What is looked up for each trigger.
    struct Holding {
      std::size_t place;  ///< among the triggers
      Holders* holders;
    };

    /// Moves to that record, which mostly comes next; false where there is none.
    bool find_record(std::uint64_t id) {
      if (record_ == ids_.size() || ids_[record_] != id) {
        const auto found = std::lower_bound(ids_.begin(), ids_.end(), id);
        record_ = static_cast<std::size_t>(found - ids_.begin());
      }
      return record_ < ids_.size() && ids_[record_] == id;
    }

    Linked_Records& records_;
    const std::vector<std::shared_ptr<trigger>>& triggers_;
    std::unordered_map<std::uint64_t, Holding, Id_Hash> holdings_;  ///< by trigger
    Entry_List entries_;
    std::vector<std::uint64_t> ids_;  ///< of the entries
    Links_By_Record links_;
    std::optional<std::uint64_t> trigger_id_;  ///< of the last link
    const Holding* holding_ = nullptr;         ///< of that trigger; null without one
    std::size_t record_ = 0;                   ///< among the entries
  };

  void load_links(odb::database& database, const char* table,
                  const std::vector<std::shared_ptr<trigger>>& triggers) {
    Link_Loader loader(*this, triggers);
    for_each_link(database, table, [&loader](std::uint64_t record_id, std::uint64_t trigger_id) {
      loader.take(record_id, trigger_id);
    });
    loader.finish();
  }

  /// A new record with all its links; gives it an id.
  Entry& add(const Record_Pointer& added) {
    added->id = ids_.allocate(
        [this](std::uint64_t id) { return entries_.count(id) != 0 || deleted_.count(id) != 0; });
    added_.insert(added->id);
    Entry& entry = entries_[added->id];
    entry.record = added;
    for (const std::uint64_t trigger_id : held_ids(*added)) {
      link(entry, trigger_id);
    }
    added->link_changes = {};
    return entry;
  }

  /// Takes over the links that were added to and removed from a record. False where the record or
  /// one of the triggers added is not stored; the changes are forgotten then.
  template <class Find_Trigger>
  bool update(const Record_Pointer& changed, Find_Trigger find_trigger) {
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
    for (Entry* const entry : holders(fresh->id).entries()) {
      replace_link(*entry->record, fresh);
    }
  }

  /// Takes triggers that are being deleted off every record.
  void drop_triggers(const std::set<std::uint64_t>& dead) {
    Entry_List affected;
    for (const std::uint64_t trigger_id : dead) {
      for (Entry* const entry : holders(trigger_id).entries()) {
        journal_.note_dropped(entry->record->id, trigger_id);
        --entry->links;
        affected.push_back(entry);
      }
      holders_.erase(trigger_id);
    }
    sort_unique_by(affected, [](const Entry* entry) { return entry->record->id; });
    for (Entry* const entry : affected) {
      remove_links(*entry->record, dead);
    }
  }

  /// The records that delete_without_triggers deletes once all triggers but these are deleted,
  /// ascending by id.
  template <class May_Go>
  std::vector<Record_Pointer> holding_none_of(const std::set<std::uint64_t>& live,
                                              May_Go may_go) const {
    std::vector<Record_Pointer> found;
    for (const auto& [id, entry] : entries_) {
      if (may_go(*entry.record) &&
          (entry.links == 0 || !held_any_when_stored(*entry.record, live))) {
        found.push_back(entry.record);
      }
    }
    return found;
  }

  /// Deletes the records that hold no trigger and that `may_go` says yes to; `forget` is told each.
  template <class May_Go, class Forget>
  void delete_without_triggers(May_Go may_go, Forget forget) {
    for (auto next = entries_.begin(); next != entries_.end();) {
      const auto entry = next++;
      const Record_Pointer record = entry->second.record;
      if (entry->second.links == 0 && may_go(*record)) {
        forget(*record);
        if (added_.erase(record->id) == 0) {
          deleted_.emplace(record->id, record);
        }
        entries_.erase(entry);
      }
    }
  }

  /// What the pass did to the records; taken as stored from then on.
  Net_Changes settle() {
    Net_Changes net;
    Link_Journal::Net_Changes journal = journal_.settle();
    net.links = std::move(journal.links);
    append_records(added_, net.added);
    append_records(journal.updated_records, net.updated);
    for (auto& [id, record] : deleted_) {
      net.deleted.push_back(std::move(record));
    }
    added_.clear();
    deleted_.clear();
    return net;
  }

  void save_ids(odb::database& database) { ids_.save(database); }

 private:
  // A link is in the list of its trigger, in the count of its record and in the journal, or in none
  // of them.

  void link(Entry& entry, std::uint64_t trigger_id) {
    if (holders_[trigger_id].add(entry.record->id, &entry)) {
      ++entry.links;
      journal_.note_added(entry.record->id, trigger_id);
    }
  }

  void unlink(Entry& entry, std::uint64_t trigger_id) {
    if (holders_[trigger_id].remove(entry.record->id)) {
      --entry.links;
      journal_.note_removed(entry.record->id, trigger_id);
    }
  }

  void take_over(Entry& entry, Record& changed,
                 const std::vector<std::shared_ptr<trigger>>& added) {
    const Trigger_Link_Changes changes = std::exchange(changed.link_changes, {});
    for (const std::uint64_t trigger_id : changes.added) {
      link(entry, trigger_id);
    }
    for (const std::uint64_t trigger_id : changes.removed) {
      unlink(entry, trigger_id);
    }
    if (&changed != entry.record.get()) {
      change_links(*entry.record, added, changes.removed);
    }
  }

  /// Forgets changes that were refused: from now on a fresh record without them stands for it.
  template <class Find_Trigger>
  void restore(Entry& entry, Find_Trigger find_trigger) {
    auto fresh = std::make_shared<Record>(*entry.record);
    const Trigger_Link_Changes refused = std::exchange(fresh->link_changes, {});
    std::vector<std::shared_ptr<trigger>> held;
    for (const std::uint64_t trigger_id : refused.removed) {
      if (const std::shared_ptr<trigger> record = find_trigger(trigger_id)) {
        held.push_back(record);
      }
    }
    change_links(*fresh, held, refused.added);
    entry.record = std::move(fresh);
  }

  template <class Ids>
  void append_records(const Ids& ids, std::vector<Record_Pointer>& records) const {
    for (const std::uint64_t id : ids) {
      const auto found = entries_.find(id);
      if (found != entries_.end()) {
        records.push_back(found->second.record);
      }
    }
  }

  Entries entries_;
  std::unordered_map<std::uint64_t, Holders, Id_Hash> holders_;  ///< by trigger
  Id_Allocator ids_;
  std::set<std::uint64_t> added_;                    ///< not stored yet
  std::map<std::uint64_t, Record_Pointer> deleted_;  ///< still stored
  Link_Journal journal_;
};

}  // namespace kuv::vemora::embedded_server
