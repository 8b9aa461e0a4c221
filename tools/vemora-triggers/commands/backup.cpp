// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/persistent/backup.h"

#include <fmt/format.h>

#include <iostream>

#include "tools/vemora-triggers/commands/commands.h"
#include "tools/vemora-triggers/process/stored_note.h"
#include "tools/vemora-triggers/render/copied_site.h"
#include "tools/vemora-triggers/render/faults.h"
#include "tools/vemora-triggers/render/json.h"
#include "tools/vemora-triggers/render/terminal.h"
#include "vemora/embedded_server/texts/printable.h"

namespace kuv::vemora::tools {
namespace {

embedded_server::Site_Counts back_up(const Options& options, const std::string& file) {
  const Progress_Line progress("backing up");
  const auto counts = embedded_server::back_up(options.database, options.server_id, file);
  note_stored("The backup is complete.");
  return counts;
}

void print_backup(const Options& options, const std::string& file,
                  const embedded_server::Site_Counts& counts) {
  if (!options.json) {
    std::cout << fmt::format("Backed up to {}: {}.\n", embedded_server::printable(file),
                             in_words(counts));
    return;
  }
  Json::Value answer(Json::objectValue);
  answer["success"] = true;
  answer["records"] = to_json(counts);
  print_json(answer);
}

}  // namespace

Exit_Status backup(const Options& options, const std::string& file) {
  try {
    print_backup(options, file, back_up(options, file));
    return exit_done;
  } catch (const embedded_server::Not_In_A_File& error) {
    print_wrong_usage(options.json, error.what());
    return exit_usage;
  }
}

}  // namespace kuv::vemora::tools
