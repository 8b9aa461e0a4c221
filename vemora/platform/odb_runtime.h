#pragma once

// Comes before everything else of ODB's runtime. One of its headers lists behind functions what
// they may throw, which C++17 no longer has. Here it is read in a way that the compiler takes, and
// whoever includes it after this gets nothing any more.

#ifdef __clang__
// Clang still knows such lists, and can be told to take them.
#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Wdynamic-exception-spec"
#include <odb/details/shared-ptr/base.hxx>
#pragma clang diagnostic pop
#else
// GCC does not, so they are defined away. The standard headers come first: none of them may be read
// like that.
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
