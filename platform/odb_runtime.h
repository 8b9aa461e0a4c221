#pragma once

// Comes before everything else of ODB's runtime. One of its headers lists behind functions what
// they may throw, which C++17 no longer has; here it is read with `throw(...)` defined away, and
// whoever includes it after this gets nothing any more. The standard headers come first so that
// none of them is read that way.

#include <cstddef>
#include <memory>
#include <new>
#include <string>
#include <utility>

#define throw(...)
#include <odb/details/shared-ptr/base.hxx>
#undef throw

#include <odb/lazy-ptr.hxx>
