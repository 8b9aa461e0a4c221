#pragma once

namespace kuv::vemora::tools {

/// Prints that there was no memory, and what is stored all the same, in the form of the command's
/// outcome; asks for no memory itself. What cannot be written is lost.
void print_out_of_memory(bool json, bool of_a_pass, const char* stored) noexcept;

}  // namespace kuv::vemora::tools
