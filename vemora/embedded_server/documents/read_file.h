// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <cstddef>
#include <string>

namespace kuv::vemora::embedded_server {

/// The content of a file; "-" is standard input. Throws Document_Error; also if there are more than
/// `limit` bytes.
std::string read_file(const std::string& path, std::size_t limit);

}  // namespace kuv::vemora::embedded_server
