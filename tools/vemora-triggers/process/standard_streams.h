#pragma once

namespace kuv::vemora::tools {

/// Fills the places of standard streams that the process was started without, so that no file
/// opened later gets them and is written to as if it were a terminal. Using such a stream fails, as
/// it would have. To be called before anything is opened.
void occupy_missing_standard_streams();

}  // namespace kuv::vemora::tools
