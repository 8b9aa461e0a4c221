// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

namespace kuv::vemora::tools {

/// Opens the standard streams that the process was started without, so that no file opened later
/// gets their descriptors and is written to by mistake. Using such a stream still fails. To be
/// called before anything is opened.
void occupy_missing_standard_streams();

}  // namespace kuv::vemora::tools
