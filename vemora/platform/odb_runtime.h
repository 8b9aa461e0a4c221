// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

// Must be included before every other header of ODB. One ODB header has throw(...) exception
// specifications, which C++17 removed. Here it is included in a way that each compiler accepts; its
// include guard makes later includes empty.

#ifdef __clang__
// For Clang, it is enough to silence the warning.
#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Wdynamic-exception-spec"
#include <odb/details/shared-ptr/base.hxx>
#pragma clang diagnostic pop
#else
// For GCC, they are defined away. The standard headers are included first, because they must not be
// read with that macro.
#include <cstddef>
#include <memory>
#include <new>
#include <string>
#include <utility>

#define throw(...)
#include <odb/details/shared-ptr/base.hxx>
#undef throw
#endif

#include <odb/lazy-ptr.hxx>
