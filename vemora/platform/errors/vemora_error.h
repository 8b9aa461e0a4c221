// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
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

// An error does not change after its construction: nobody outside the family can set its code.
// Only a whole error can be assigned to another one, text and code together, as with the standard
// classes; a code that could not be assigned would part from its text there. The root and the two
// kinds have no text, so nothing is assigned through them.

template <class Standard>
class Vemora_Error;

template <>
class Vemora_Error<std::runtime_error>;
template <>
class Vemora_Error<std::logic_error>;

/// Root of the family.
template <>
class VEMORA_API Vemora_Error<std::exception> {
 public:
  /// A signed 32-bit number that others can only read.
  class Code {
   public:
    /// Copied with its error.
    Code(const Code&) = default;
    /// The number.
    operator std::int32_t() const { return value_; }

   private:
    friend class Vemora_Error;

    Code() = default;
    Code& operator=(const Code&) = default;

    std::int32_t value_ = 0;
  };

  Vemora_Error() = default;
  /// Errors are copied when they are thrown and caught.
  Vemora_Error(const Vemora_Error&) = default;
  virtual ~Vemora_Error() = default;

  Code error_code;  ///< one of `error_codes`

 protected:
  /// For the whole errors alone.
  Vemora_Error& operator=(const Vemora_Error&) = default;

 private:
  // The two that are constructed with a code. The class that is thrown constructs this root, and
  // would have to know the code otherwise, also where a server derives its own.
  friend class Vemora_Error<std::runtime_error>;
  friend class Vemora_Error<std::logic_error>;

  void set_code_(std::int32_t code) { error_code.value_ = code; }
};

/// An error of the family that is a std::runtime_error.
template <>
class VEMORA_API Vemora_Error<std::runtime_error> : public std::runtime_error,
                                                    public virtual Vemora_Error<std::exception> {
 public:
  /// `message` becomes what(); `code` is one of `error_codes`.
  Vemora_Error(const std::string& message, std::int32_t code) : std::runtime_error(message) {
    set_code_(code);
  }
};

/// An error of the family that is a std::logic_error.
template <>
class VEMORA_API Vemora_Error<std::logic_error> : public std::logic_error,
                                                  public virtual Vemora_Error<std::exception> {
 public:
  /// `message` becomes what(); `code` is one of `error_codes`.
  Vemora_Error(const std::string& message, std::int32_t code) : std::logic_error(message) {
    set_code_(code);
  }
};

/// The database does not hold, or does not take, what the system relies on; or the server does not
/// keep to a contract: a collaborator is missing or calls back.
template <class Standard>
class Internal_Error;

/// What handlers of this kind catch.
template <>
class VEMORA_API Internal_Error<std::exception> : public virtual Vemora_Error<std::exception> {
 public:
  Internal_Error() = default;
  /// Errors are copied when they are thrown and caught.
  Internal_Error(const Internal_Error&) = default;
  ~Internal_Error() override = default;

 protected:
  /// For the whole errors alone.
  Internal_Error& operator=(const Internal_Error&) = default;
};

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

/// What handlers of this kind catch.
template <>
class VEMORA_API Backend_Error<std::exception> : public virtual Vemora_Error<std::exception> {
 public:
  Backend_Error() = default;
  /// Errors are copied when they are thrown and caught.
  Backend_Error(const Backend_Error&) = default;
  ~Backend_Error() override = default;

 protected:
  /// For the whole errors alone.
  Backend_Error& operator=(const Backend_Error&) = default;
};

template <>
class VEMORA_API Backend_Error<std::runtime_error> : public Vemora_Error<std::runtime_error>,
                                                     public Backend_Error<std::exception> {
 public:
  using Vemora_Error<std::runtime_error>::Vemora_Error;
};

}  // namespace kuv::vemora
