// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "embedded_server/persistent/database_contract.h"

#include <fmt/format.h>

namespace kuv::test {
namespace {

/// An id as it is stored: the same bits, signed.
std::int64_t stored(std::uint64_t id) {
  return static_cast<std::int64_t>(id);
}

std::uint64_t id_in(const std::optional<std::string>& cell) {
  return static_cast<std::uint64_t>(std::stoll(cell.value()));
}

std::set<Stored_Rows::Link> links_in(Foreign_Program& program, const std::string& table) {
  std::set<Stored_Rows::Link> links;
  for (const Row& row : program.query("SELECT record_id, linked_id FROM " + table)) {
    links.insert({id_in(row.at(0)), id_in(row.at(1))});
  }
  return links;
}

Contract_Implementation implementation_of(const Database_Engine& engine, Joining joining) {
  const std::string suffix = joining == Joining::one_pass ? "_in_a_pass" : "_on_its_own";
  return {engine.name + suffix,
          [engine, joining](const Site_Description& site) {
            return std::make_unique<Database_Site>(engine, joining, site);
          },
          engine.takes_any_bytes};
}

}  // namespace

Database_Site::Database_Site(const Database_Engine& engine, Joining joining,
                             const Site_Description& described)
    : Database_Fixture(engine), joining_(joining) {
  site = Site_Builder(described);
}

Repository& Database_Site::repository() {
  if (!repository_) {
    repository_ = make_repository(database());
    if (joining_ == Joining::one_pass) {
      pass_ = std::make_unique<Pass_Scope>(database(), server_id);
    }
  }
  return *repository_;
}

bool Database_Site::reopen() {
  if (pass_) {
    pass_->end();
  }
  repository_.reset();
  pass_.reset();
  close();
  return true;
}

std::optional<Stored_Rows> Database_Site::look_behind() {
  Foreign_Program& program = foreign_program();
  Stored_Rows rows;
  for (const Row& row : program.query("SELECT id FROM trigger_record")) {
    rows.trigger_ids.insert(id_in(row.at(0)));
  }
  rows.subscription_links = links_in(program, "subscription_trigger");
  rows.detection_links = links_in(program, "eta_camera_trigger");
  rows.schedules_of_triggers = program.count("trigger_schedule");
  rows.sources_of_triggers = program.count("trigger_source");
  return rows;
}

bool Database_Site::plant(const Half_Filled_Subscription& planted) {
  const auto cell = [](const auto& value) {
    return value ? fmt::format("'{}'", *value) : std::string("NULL");
  };
  const auto camera_id =
      planted.camera_id ? std::make_optional(stored(*planted.camera_id)) : std::nullopt;
  foreign_program().execute(
      fmt::format("INSERT INTO subscription (id, name, camera_id, onvif_topic) "
                  "VALUES ({}, '{}', {}, {})",
                  stored(planted.id), planted.name, cell(camera_id), cell(planted.onvif_topic)));
  return true;
}

std::vector<Contract_Implementation> database_implementations() {
  std::vector<Contract_Implementation> all;
  for (const Database_Engine& engine : database_engines()) {
    all.push_back(implementation_of(engine, Joining::one_pass));
    all.push_back(implementation_of(engine, Joining::no_pass));
  }
  return all;
}

}  // namespace kuv::test
