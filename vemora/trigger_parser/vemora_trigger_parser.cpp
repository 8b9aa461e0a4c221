// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/trigger_parser/vemora_trigger_parser.h"

#include <stdexcept>
#include <utility>

#include "vemora/platform/errors/error_codes.h"
#include "vemora/platform/errors/vemora_error.h"
#include "vemora/trigger_parser/faults.h"
#include "vemora/trigger_parser/required_repository.h"

namespace kuv::vemora {

Vemora_Trigger_Parser::Vemora_Trigger_Parser(std::shared_ptr<Repository> repository,
                                             std::uint64_t server_id)
    : logger_("Trigger_Parser"), repository_(std::move(repository)), server_id_(server_id) {}

Vemora_Trigger_Parser::~Vemora_Trigger_Parser() = default;

std::map<std::string, Tag_Info> Vemora_Trigger_Parser::get_latest_server_tags_(Faults& faults) {
  const std::shared_ptr<server> record =
      required_repository(repository_).servers().get_by_id(server_id_);
  if (record) {
    return record->tags;
  }
  const char* const message = "Failed to retrieve server tags due to invalid server ID";
  if (!faults.tell(message, std::nullopt)) {
    throw Internal_Error<std::logic_error>(message, error_codes::internal);
  }
  return {};
}

}  // namespace kuv::vemora
