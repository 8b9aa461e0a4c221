// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/testing/contract_suite.h"

#include "embedded_server/persistent/database_contract.h"

namespace kuv::test {
namespace {

VEMORA_TEST_REPOSITORIES(Engines, database_implementations())

}  // namespace
}  // namespace kuv::test
