// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include <fmt/format.h>

#include <iostream>

#include "tools/vemora-triggers/commands/commands.h"
#include "tools/vemora-triggers/process/stored_note.h"
#include "tools/vemora-triggers/render/copied_site.h"
#include "tools/vemora-triggers/render/faults.h"
#include "tools/vemora-triggers/render/json.h"
#include "tools/vemora-triggers/render/terminal.h"
#include "vemora/embedded_server/persistent/backup.h"

namespace kuv::vemora::tools {
namespace {

using embedded_server::Restored_Site;

Restored_Site restored(const Options& options, const std::string& file) {
  const Progress_Line progress("restoring");
  try {
    Restored_Site site = embedded_server::restore(options.database, options.server_id, file);
    note_stored("The backup is restored.");
    return site;
  } catch (const embedded_server::Restore_Not_Known&) {
    note_stored("It is not known whether the backup is restored.");
    throw;
  }
}

void print_for_people(const Restored_Site& site) {
  std::cout << fmt::format("Restored: {}.\n", in_words(site.counts));
  if (!site.pending_cameras.empty()) {
    std::cout << fmt::format("Cameras that the next pass reconciles: {}\n",
                             site.pending_cameras.size());
  }
}

void print_restored(const Options& options, const Restored_Site& site) {
  if (!options.json) {
    print_for_people(site);
    return;
  }
  Json::Value answer(Json::objectValue);
  answer["success"] = true;
  answer["records"] = to_json(site.counts);
  answer["pending"] = Json::Value(Json::arrayValue);
  for (const std::uint64_t camera_id : site.pending_cameras) {
    answer["pending"].append(Json::UInt64(camera_id));
  }
  print_json(answer);
}

}  // namespace

Exit_Status restore(const Options& options, const std::string& file) {
  try {
    print_restored(options, restored(options, file));
    return exit_done;
  } catch (const embedded_server::Not_In_A_File& error) {
    print_wrong_usage(options.json, error.what());
    return exit_usage;
  }
}

}  // namespace kuv::vemora::tools
