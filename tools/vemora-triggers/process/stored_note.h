#pragma once

namespace kuv::vemora::tools {

// What is stored already, and has to be told with whatever fails from then on. Kept beside the
// outcome, so that it is there when the memory for an outcome is not.

/// `sentence` lives as long as the program; empty: nothing is stored.
void note_stored(const char* sentence) noexcept;

const char* stored_note() noexcept;

}  // namespace kuv::vemora::tools
