// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only

// Catches what thrower.cpp throws, by every type that a handler may name. Each of the two is built
// with a compiler of its own.

#include <cstdint>
#include <cstdio>
#include <set>
#include <stdexcept>
#include <string>

#include "thrower.h"
#include "vemora/platform/errors/error_codes.h"
#include "vemora/platform/errors/vemora_error.h"
#include "vemora/platform/tags/tag_filter_error.h"

namespace kuv::test {
namespace {

using namespace kuv::vemora;
using Handlers = std::set<std::string>;

bool failed = false;

void expect(bool kept, const std::string& fault) {
  if (!kept) {
    std::fprintf(stderr, "catcher: %s\n", fault.c_str());
    failed = true;
  }
}

template <class Error>
void try_handler(Throw raise, const char* name, Handlers& handlers) {
  try {
    raise();
  } catch (const Error&) {
    handlers.insert(name);
  } catch (...) {
    // by another handler
  }
}

Handlers handlers_of(Throw raise) {
  Handlers handlers;
  try_handler<Vemora_Error<std::exception>>(raise, "Vemora_Error", handlers);
  try_handler<Vemora_Error<std::runtime_error>>(raise, "Vemora_Error<runtime>", handlers);
  try_handler<Vemora_Error<std::logic_error>>(raise, "Vemora_Error<logic>", handlers);
  try_handler<Internal_Error<std::exception>>(raise, "Internal_Error", handlers);
  try_handler<Internal_Error<std::runtime_error>>(raise, "Internal_Error<runtime>", handlers);
  try_handler<Internal_Error<std::logic_error>>(raise, "Internal_Error<logic>", handlers);
  try_handler<Backend_Error<std::exception>>(raise, "Backend_Error", handlers);
  try_handler<Backend_Error<std::runtime_error>>(raise, "Backend_Error<runtime>", handlers);
  try_handler<Tag_Filter_Error>(raise, "Tag_Filter_Error", handlers);
  try_handler<std::runtime_error>(raise, "std::runtime_error", handlers);
  try_handler<std::logic_error>(raise, "std::logic_error", handlers);
  try_handler<std::exception>(raise, "std::exception", handlers);
  return handlers;
}

void expect_handlers(const std::string& thrown, Throw raise, const Handlers& expected) {
  const Handlers found = handlers_of(raise);
  for (const std::string& handler : expected) {
    expect(found.count(handler) == 1, thrown + " is not caught as " + handler);
  }
  for (const std::string& handler : found) {
    expect(expected.count(handler) == 1, thrown + " is caught as " + handler);
  }
}

void expect_code_and_text(const std::string& thrown, Throw raise, std::int32_t code) {
  try {
    raise();
  } catch (const Vemora_Error<std::exception>& error) {
    expect(error.error_code == code, thrown + " has another code");
    const auto* const standard = dynamic_cast<const std::exception*>(&error);
    expect(standard != nullptr && std::string(standard->what()) == "a text",
           thrown + " has another text");
  }
}

void expect_faults_of_a_tag_filter(Throw raise) {
  try {
    raise();
  } catch (const Tag_Filter_Error& error) {
    expect(error.faults().size() == 2 && error.faults()[1].message == "another one" &&
               error.faults()[1].offset == 9,
           "Tag_Filter_Error has other faults");
  }
}

void run(const Thrower& thrower) {
  expect_handlers(
      "Vemora_Error<runtime>", thrower.vemora_runtime_error,
      {"Vemora_Error", "Vemora_Error<runtime>", "std::runtime_error", "std::exception"});
  expect_handlers("Vemora_Error<logic>", thrower.vemora_logic_error,
                  {"Vemora_Error", "Vemora_Error<logic>", "std::logic_error", "std::exception"});
  expect_handlers("Internal_Error<runtime>", thrower.internal_runtime_error,
                  {"Internal_Error", "Internal_Error<runtime>", "Vemora_Error",
                   "Vemora_Error<runtime>", "std::runtime_error", "std::exception"});
  expect_handlers("Internal_Error<logic>", thrower.internal_logic_error,
                  {"Internal_Error", "Internal_Error<logic>", "Vemora_Error", "Vemora_Error<logic>",
                   "std::logic_error", "std::exception"});
  expect_handlers("Backend_Error<runtime>", thrower.backend_runtime_error,
                  {"Backend_Error", "Backend_Error<runtime>", "Vemora_Error",
                   "Vemora_Error<runtime>", "std::runtime_error", "std::exception"});
  expect_handlers("Tag_Filter_Error", thrower.tag_filter_error,
                  {"Tag_Filter_Error", "Backend_Error", "Backend_Error<runtime>", "Vemora_Error",
                   "Vemora_Error<runtime>", "std::runtime_error", "std::exception"});

  expect_code_and_text("Vemora_Error<runtime>", thrower.vemora_runtime_error, 42);
  expect_code_and_text("Vemora_Error<logic>", thrower.vemora_logic_error, 42);
  expect_code_and_text("Internal_Error<runtime>", thrower.internal_runtime_error, 42);
  expect_code_and_text("Internal_Error<logic>", thrower.internal_logic_error, 42);
  expect_code_and_text("Backend_Error<runtime>", thrower.backend_runtime_error, 42);
  expect_code_and_text("Tag_Filter_Error", thrower.tag_filter_error, error_codes::invalid_document);
  expect_faults_of_a_tag_filter(thrower.tag_filter_error);
}

}  // namespace
}  // namespace kuv::test

int main() {
  kuv::test::run(kuv::test::thrower());
  return kuv::test::failed ? 1 : 0;
}
