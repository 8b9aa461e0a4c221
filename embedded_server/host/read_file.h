#pragma once

#include <cstddef>
#include <string>

namespace kuv::vemora::embedded_server {

/// What a document may take: half of what a field of the database can hold.
constexpr std::size_t largest_document = std::size_t{512} << 20;

/// The content of a file; "-" is standard input. Throws Document_Error, also where there is more
/// than `limit` bytes or no end.
std::string read_file(const std::string& path, std::size_t limit = largest_document);

}  // namespace kuv::vemora::embedded_server
