// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "benchmarks/round_trip_meter.h"

#include <sys/socket.h>

#include <atomic>

namespace {

std::atomic<bool> sent{false};
std::atomic<std::size_t> round_trips{0};

}  // namespace

// The database's client library calls these instead of the C library's.

extern "C" ssize_t send(int socket, const void* bytes, std::size_t size, int flags) {
  sent = true;
  return sendto(socket, bytes, size, flags, nullptr, 0);
}

extern "C" ssize_t recv(int socket, void* bytes, std::size_t size, int flags) {
  const ssize_t received = recvfrom(socket, bytes, size, flags, nullptr, nullptr);
  if (received > 0 && sent.exchange(false)) {
    ++round_trips;
  }
  return received;
}

namespace kuv::benchmarks {

std::size_t round_trips_so_far() {
  return round_trips;
}

}  // namespace kuv::benchmarks
