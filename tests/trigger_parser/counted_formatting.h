// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

namespace kuv::test {

/// How many texts were formatted in this process so far, in whichever library.
int texts_formatted();

}  // namespace kuv::test
