#pragma once

#include <boost/date_time/posix_time/posix_time_duration.hpp>

#include "vemora/platform/export.h"

namespace kuv::vemora {

/// Settings of the server's stream pipeline that its libraries share.
struct VEMORA_API Stream_Pipeline {
  /// How long motion must last to count where nothing else was set.
  inline static const boost::posix_time::time_duration DEFAULT_MIN_MOTION_DURATION =
      boost::posix_time::microseconds(5'000'000);
};

}  // namespace kuv::vemora
