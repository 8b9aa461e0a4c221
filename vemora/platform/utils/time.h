// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <boost/date_time/posix_time/posix_time_types.hpp>
#include <boost/date_time/posix_time/time_parsers.hpp>

namespace kuv::utils {

/// Zero of the time stamps that count from 1970.
inline const boost::posix_time::ptime UNIX_EPOCH =
    boost::posix_time::time_from_string("1970-01-01 00:00:00.000");

/// Zero of the time stamps that count from 1900, as network time does.
inline const boost::posix_time::ptime NTP_EPOCH =
    boost::posix_time::time_from_string("1900-01-01 00:00:00.000");

}  // namespace kuv::utils
