#pragma once

#include <cstdint>
#include <exception>
#include <stdexcept>
#include <string>

#include "vemora/platform/export.h"

namespace kuv::vemora {

// One family of errors, each wrapping the standard exception class it is parameterised by. A
// handler catches by kind (`Internal_Error<std::exception>`, `Backend_Error<std::exception>`), by
// the standard class, or by the root `Vemora_Error<std::exception>`, and reads one shared
// `error_code` whichever it took. The text is the standard base's `what()`.

template <class Standard>
class Vemora_Error;

/// Root of the family.
template <>
class VEMORA_API Vemora_Error<std::exception> {
 public:
  Vemora_Error() = default;
  Vemora_Error(const Vemora_Error&) = default;
  Vemora_Error& operator=(const Vemora_Error&) = default;
  virtual ~Vemora_Error() = default;

  std::int32_t error_code = 0;  ///< one of `error_codes`
};

template <>
class VEMORA_API Vemora_Error<std::runtime_error> : public std::runtime_error,
                                                    public virtual Vemora_Error<std::exception> {
 public:
  Vemora_Error(const std::string& message, std::int32_t code) : std::runtime_error(message) {
    error_code = code;
  }
};

template <>
class VEMORA_API Vemora_Error<std::logic_error> : public std::logic_error,
                                                  public virtual Vemora_Error<std::exception> {
 public:
  Vemora_Error(const std::string& message, std::int32_t code) : std::logic_error(message) {
    error_code = code;
  }
};

/// The database does not hold, or does not take, what the system relies on.
template <class Standard>
class Internal_Error;

template <>
class VEMORA_API Internal_Error<std::exception> : public virtual Vemora_Error<std::exception> {};

template <>
class VEMORA_API Internal_Error<std::runtime_error> : public Vemora_Error<std::runtime_error>,
                                                      public Internal_Error<std::exception> {
 public:
  using Vemora_Error<std::runtime_error>::Vemora_Error;
};

template <>
class VEMORA_API Internal_Error<std::logic_error> : public Vemora_Error<std::logic_error>,
                                                    public Internal_Error<std::exception> {
 public:
  using Vemora_Error<std::logic_error>::Vemora_Error;
};

/// What was handed over from outside is not valid.
template <class Standard>
class Backend_Error;

template <>
class VEMORA_API Backend_Error<std::exception> : public virtual Vemora_Error<std::exception> {};

template <>
class VEMORA_API Backend_Error<std::runtime_error> : public Vemora_Error<std::runtime_error>,
                                                     public Backend_Error<std::exception> {
 public:
  using Vemora_Error<std::runtime_error>::Vemora_Error;
};

}  // namespace kuv::vemora
