#pragma once

// The only way ODB's runtime is included. One of its headers lists behind functions what they may
// throw, which C++17 no longer has; it is read with `throw(...)` defined away. The standard headers
// come first so that none of them is read that way.

#include <cstddef>
#include <memory>
#include <new>
#include <string>
#include <utility>

#define throw(...)
#include <odb/details/shared-ptr/base.hxx>
#undef throw

#include <odb/lazy-ptr.hxx>
