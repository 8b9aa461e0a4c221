#pragma once

#include <chrono>
#include <string>

namespace kuv::vemora::embedded_server {

/// A lock that processes, and threads of one, hold by turns: an open file, locked. The kernel lets
/// go of it when the holder dies, however it dies.
class File_Lock {
 public:
  /// Waits for the lock; throws Database_Error when it is not to be had within `wait`.
  File_Lock(const std::string& path, std::chrono::milliseconds wait);
  ~File_Lock();
  File_Lock(const File_Lock&) = delete;
  File_Lock& operator=(const File_Lock&) = delete;

 private:
  int descriptor_;
};

}  // namespace kuv::vemora::embedded_server
