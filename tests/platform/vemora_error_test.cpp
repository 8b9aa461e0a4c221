// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/platform/errors/vemora_error.h"

#include <gmock/gmock.h>

#include <limits>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>

#include "vemora/platform/errors/error_codes.h"

namespace kuv::test {
namespace {

using namespace kuv::vemora;

using Root = Vemora_Error<std::exception>;
using Runtime_Root = Vemora_Error<std::runtime_error>;
using Logic_Root = Vemora_Error<std::logic_error>;
using Internal = Internal_Error<std::exception>;
using Internal_Runtime = Internal_Error<std::runtime_error>;
using Internal_Logic = Internal_Error<std::logic_error>;
using Backend = Backend_Error<std::exception>;
using Backend_Runtime = Backend_Error<std::runtime_error>;

/// Whether a handler for `Base` sees an error of type `Error`: derived publicly, and only one way.
template <class Base, class Error>
constexpr bool is_caught_as = std::is_convertible_v<Error*, Base*>;

template <class Base, class Error>
void expect_code_and_text(const Error& error, std::int32_t code, const char* text) {
  try {
    throw error;
  } catch (const Base& caught) {
    EXPECT_EQ(dynamic_cast<const Root&>(caught).error_code, code);
    EXPECT_STREQ(dynamic_cast<const std::exception&>(caught).what(), text);
    return;
  } catch (...) {
  }
  ADD_FAILURE() << "not seen by the handler";
}

TEST(Error_Family, has_the_root_above_everything_and_nothing_above_the_root) {
  EXPECT_FALSE((std::is_base_of_v<std::exception, Root>));
  EXPECT_FALSE((std::is_base_of_v<std::exception, Internal>));
  EXPECT_FALSE((std::is_base_of_v<std::exception, Backend>));
  EXPECT_TRUE((is_caught_as<Root, Runtime_Root>));
  EXPECT_TRUE((is_caught_as<Root, Logic_Root>));
  EXPECT_TRUE((is_caught_as<Root, Internal>));
  EXPECT_TRUE((is_caught_as<Root, Backend>));
  EXPECT_TRUE((is_caught_as<Root, Internal_Runtime>));
  EXPECT_TRUE((is_caught_as<Root, Internal_Logic>));
  EXPECT_TRUE((is_caught_as<Root, Backend_Runtime>));
}

TEST(Error_Family, is_caught_by_the_standard_class_that_each_type_wraps) {
  EXPECT_TRUE((is_caught_as<std::runtime_error, Runtime_Root>));
  EXPECT_TRUE((is_caught_as<std::logic_error, Logic_Root>));
  EXPECT_TRUE((is_caught_as<std::runtime_error, Internal_Runtime>));
  EXPECT_TRUE((is_caught_as<std::logic_error, Internal_Logic>));
  EXPECT_TRUE((is_caught_as<std::runtime_error, Backend_Runtime>));
  EXPECT_TRUE((is_caught_as<std::exception, Internal_Runtime>));
  EXPECT_TRUE((is_caught_as<std::exception, Internal_Logic>));
  EXPECT_TRUE((is_caught_as<std::exception, Backend_Runtime>));
}

TEST(Error_Family, is_caught_by_kind) {
  EXPECT_TRUE((is_caught_as<Internal, Internal_Runtime>));
  EXPECT_TRUE((is_caught_as<Internal, Internal_Logic>));
  EXPECT_TRUE((is_caught_as<Backend, Backend_Runtime>));
  EXPECT_TRUE((is_caught_as<Runtime_Root, Internal_Runtime>));
  EXPECT_TRUE((is_caught_as<Logic_Root, Internal_Logic>));
  EXPECT_TRUE((is_caught_as<Runtime_Root, Backend_Runtime>));
}

TEST(Error_Family, is_not_caught_as_what_it_is_not) {
  EXPECT_FALSE((std::is_base_of_v<std::logic_error, Internal_Runtime>));
  EXPECT_FALSE((std::is_base_of_v<std::runtime_error, Internal_Logic>));
  EXPECT_FALSE((std::is_base_of_v<std::logic_error, Backend_Runtime>));
  EXPECT_FALSE((std::is_base_of_v<Backend, Internal_Runtime>));
  EXPECT_FALSE((std::is_base_of_v<Backend, Internal_Logic>));
  EXPECT_FALSE((std::is_base_of_v<Internal, Backend_Runtime>));
  EXPECT_FALSE((std::is_base_of_v<Internal, Runtime_Root>));
  EXPECT_FALSE((std::is_base_of_v<Backend, Runtime_Root>));
  EXPECT_FALSE((std::is_base_of_v<Runtime_Root, Internal>));
  EXPECT_FALSE((std::is_base_of_v<Runtime_Root, Backend>));
}

TEST(Error_Family, shares_its_root_between_the_two_sides_of_the_diamond) {
  const Internal_Runtime error("text", -2);

  const Root* const by_class = static_cast<const Runtime_Root*>(&error);
  const Root* const by_kind = static_cast<const Internal*>(&error);

  EXPECT_EQ(by_class, by_kind);
}

TEST(Error_Family, has_virtual_destructors) {
  EXPECT_TRUE(std::has_virtual_destructor_v<Root>);
  EXPECT_TRUE(std::has_virtual_destructor_v<Runtime_Root>);
  EXPECT_TRUE(std::has_virtual_destructor_v<Logic_Root>);
  EXPECT_TRUE(std::has_virtual_destructor_v<Internal>);
  EXPECT_TRUE(std::has_virtual_destructor_v<Internal_Runtime>);
  EXPECT_TRUE(std::has_virtual_destructor_v<Internal_Logic>);
  EXPECT_TRUE(std::has_virtual_destructor_v<Backend>);
  EXPECT_TRUE(std::has_virtual_destructor_v<Backend_Runtime>);
}

TEST(Error_Family, holds_a_signed_32_bit_code) {
  EXPECT_EQ(sizeof(Root::error_code), sizeof(std::int32_t));
  EXPECT_TRUE((std::is_convertible_v<decltype(Root::error_code), std::int32_t>));
  for (const std::int32_t code : {std::numeric_limits<std::int32_t>::min(),
                                  std::numeric_limits<std::int32_t>::max(), 0, -1}) {
    EXPECT_EQ(Internal_Runtime("text", code).error_code, code);
  }
  EXPECT_EQ(error_codes::invalid_document, 245760);
  EXPECT_EQ(error_codes::internal, -2);
}

TEST(Error_Family, gives_code_and_text_of_a_backend_error_to_every_handler) {
  const char* const text = "\"sources\" array is empty.";
  const Backend_Runtime error(text, 245760);

  expect_code_and_text<Backend_Runtime>(error, 245760, text);
  expect_code_and_text<Backend>(error, 245760, text);
  expect_code_and_text<Runtime_Root>(error, 245760, text);
  expect_code_and_text<Root>(error, 245760, text);
  expect_code_and_text<std::runtime_error>(error, 245760, text);
  expect_code_and_text<std::exception>(error, 245760, text);
}

TEST(Error_Family, gives_code_and_text_of_an_internal_runtime_error_to_every_handler) {
  const char* const text = "Failed to create trigger";
  const Internal_Runtime error(text, -2);

  expect_code_and_text<Internal_Runtime>(error, -2, text);
  expect_code_and_text<Internal>(error, -2, text);
  expect_code_and_text<Runtime_Root>(error, -2, text);
  expect_code_and_text<Root>(error, -2, text);
  expect_code_and_text<std::runtime_error>(error, -2, text);
  expect_code_and_text<std::exception>(error, -2, text);
}

TEST(Error_Family, gives_code_and_text_of_an_internal_logic_error_to_every_handler) {
  const char* const text = "Failed to retrieve server tags due to invalid server ID";
  const Internal_Logic error(text, -2);

  expect_code_and_text<Internal_Logic>(error, -2, text);
  expect_code_and_text<Internal>(error, -2, text);
  expect_code_and_text<Logic_Root>(error, -2, text);
  expect_code_and_text<Root>(error, -2, text);
  expect_code_and_text<std::logic_error>(error, -2, text);
  expect_code_and_text<std::exception>(error, -2, text);
}

TEST(Error_Family, hides_a_logic_error_from_handlers_of_runtime_errors) {
  bool seen_as_logic_error = false;
  try {
    throw Internal_Logic("text", -2);
  } catch (const std::runtime_error&) {
    ADD_FAILURE() << "it is no runtime error";
  } catch (const std::logic_error&) {
    seen_as_logic_error = true;
  }
  EXPECT_TRUE(seen_as_logic_error);
}

TEST(Error_Family, takes_its_text_as_string_or_literal_and_keeps_a_copy) {
  std::string text = "first";
  const Backend_Runtime from_string(text, 1);
  const Backend_Runtime from_literal("literal", 2);
  text = "second";

  EXPECT_STREQ(from_string.what(), "first");
  EXPECT_STREQ(from_literal.what(), "literal");
}

TEST(Error_Family, keeps_code_and_text_in_a_copy) {
  const Internal_Logic original("text", std::numeric_limits<std::int32_t>::min());
  const Internal_Logic copy = original;

  EXPECT_STREQ(copy.what(), "text");
  EXPECT_EQ(copy.error_code, std::numeric_limits<std::int32_t>::min());
}

// Immutable, but as a whole

template <class Error, class Value>
constexpr bool takes_a_code_from =
    std::is_assignable_v<decltype((std::declval<Error&>().error_code)), Value>;

TEST(Error_Family, lets_nobody_change_the_code_of_an_error) {
  EXPECT_FALSE((takes_a_code_from<Root, std::int32_t>));
  EXPECT_FALSE((takes_a_code_from<Root, decltype(Root::error_code)>));
  EXPECT_FALSE((takes_a_code_from<Backend_Runtime, std::int32_t>));
  EXPECT_FALSE((takes_a_code_from<Internal_Logic, decltype(Root::error_code)>));
}

TEST(Error_Family, is_replaced_with_text_and_code_together) {
  Backend_Runtime error("old", 1);
  error = Backend_Runtime("new", 2);

  EXPECT_STREQ(error.what(), "new");
  EXPECT_EQ(error.error_code, 2);
}

/// As a server may derive one.
struct Error_Of_A_Server : Backend_Runtime {
  using Backend_Runtime::Backend_Runtime;
};

TEST(Error_Family, keeps_the_code_in_what_others_derive_from_it) {
  const Error_Of_A_Server error("text", 7);
  expect_code_and_text<Root>(error, 7, "text");
}

/// One that has its text elsewhere.
struct Kind_Of_A_Server : Internal, std::exception {};

template <class Error>
constexpr bool is_assigned = std::is_copy_assignable_v<Error> || std::is_move_assignable_v<Error>;

TEST(Error_Family, is_not_assigned_through_a_class_that_has_no_text) {
  EXPECT_FALSE(is_assigned<Root>);
  EXPECT_FALSE(is_assigned<Internal>);
  EXPECT_FALSE(is_assigned<Backend>);
  EXPECT_TRUE(std::is_copy_constructible_v<Root> && std::is_move_constructible_v<Root>);
  EXPECT_TRUE(std::is_copy_constructible_v<Internal> && std::is_move_constructible_v<Internal>);
  EXPECT_TRUE(std::is_copy_constructible_v<Backend> && std::is_move_constructible_v<Backend>);
}

template <class... Errors>
constexpr bool are_all_assigned = ((std::is_copy_assignable_v<Errors> &&
                                    std::is_move_assignable_v<Errors>)&&...);

TEST(Error_Family, is_assigned_through_a_class_that_has_both) {
  EXPECT_TRUE((are_all_assigned<Runtime_Root, Logic_Root, Internal_Runtime, Internal_Logic,
                                Backend_Runtime, Error_Of_A_Server, Kind_Of_A_Server>));
  Internal_Runtime error("old", 1);
  Runtime_Root& through_its_class = error;
  through_its_class = Runtime_Root("new", 2);

  EXPECT_STREQ(error.what(), "new");
  EXPECT_EQ(error.error_code, 2);
}

TEST(Error_Family, holds_code_zero_where_it_was_given_none) {
  EXPECT_EQ(Internal().error_code, 0);
  EXPECT_EQ(Backend().error_code, 0);
}

}  // namespace
}  // namespace kuv::test
