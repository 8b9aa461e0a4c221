// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/documents/json_document.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

#include "vemora/embedded_server/documents/json_grammar.h"

namespace kuv::vemora::embedded_server {
namespace {

using testing::Field;

std::string repeated(const std::string& text, std::size_t times) {
  std::string all;
  for (; times > 0; --times) {
    all += text;
  }
  return all;
}

/// "line:column: what is wrong", or "accepted".
std::string verdict(const std::string& text) {
  try {
    const Json_Document document(text);
    return "accepted";
  } catch (const Document_Error& error) {
    return std::to_string(error.location.line) + ":" + std::to_string(error.location.column) +
           ": " + error.what();
  }
}

TEST(Read_Documents, accepts_every_form_of_a_value) {
  for (const char* text :
       {"{}", "[]", " \t\r\n{ } \n", "[[], {}, \"\", 0, -0, true, false, null]",
        "[10, -1.5, 0.25, 1e9, 1E+9, 12.5e-3, 18446744073709551615]", R"({"a": {"a": 1}, "": 2})",
        R"(["\" \\ \/ \b \f \n \r \t \u0000 \u00e9 \uFFFF \ud83d\udeaa"])",
        "[\"Tür 門 🚪 \x7F\"]"}) {
    EXPECT_EQ(verdict(text), "accepted") << text;
  }
}

TEST(Read_Documents, accepts_bytes_that_are_no_utf8_as_they_are) {
  const Json_Document document("[\"\x80\xFF\"]");
  EXPECT_EQ(document.value()[0].asString(), "\x80\xFF");
}

TEST(Read_Documents, rejects_what_is_neither_an_object_nor_an_array) {
  EXPECT_EQ(verdict(""), "1:1: The document is empty.");
  EXPECT_EQ(verdict(" \n "), "2:2: The document is empty.");
  for (const char* text : {"7", "\"triggers\"", "null", "x", "}"}) {
    EXPECT_EQ(verdict(text), "1:1: A document must be an object or an array.") << text;
  }
}

TEST(Read_Documents, rejects_what_ends_too_early) {
  for (const char* text : {"{", "[", "{\"a\":", "[1,", "{\"a\": 1", "{\"a\": 1,", "[[]"}) {
    EXPECT_EQ(verdict(text), "1:" + std::to_string(std::string(text).size() + 1) +
                                 ": The document ends too early.");
  }
  EXPECT_EQ(verdict("{\"a\""), "1:5: Expected a colon.");
  EXPECT_EQ(verdict("[\"a"), "1:2: The string that begins here has no end.");
  EXPECT_EQ(verdict("[\"a\\"), "1:4: Unknown escape sequence.");
}

TEST(Read_Documents, rejects_what_stands_behind_the_end) {
  EXPECT_EQ(verdict("{}{}"), "1:3: Unexpected text after the end of the document.");
  EXPECT_EQ(verdict("[]\n]"), "2:1: Unexpected text after the end of the document.");
  EXPECT_EQ(verdict(std::string("{}\0", 3)), "1:3: Unexpected text after the end of the document.");
}

TEST(Read_Documents, rejects_comments_wherever_they_stand) {
  EXPECT_EQ(verdict("/* none */{}"), "1:1: Comments are not allowed in JSON.");
  EXPECT_EQ(verdict("{/* none */}"), "1:2: Comments are not allowed in JSON.");
  EXPECT_EQ(verdict("{\"a\" /* none */: 1}"), "1:6: Comments are not allowed in JSON.");
  EXPECT_EQ(verdict("{\"a\": /* none */ 1}"), "1:7: Comments are not allowed in JSON.");
  EXPECT_EQ(verdict("{\"a\": 1 /* none */}"), "1:9: Comments are not allowed in JSON.");
  EXPECT_EQ(verdict("[1, // none\n 2]"), "1:5: Comments are not allowed in JSON.");
  EXPECT_EQ(verdict("[] // none\n"), "1:4: Comments are not allowed in JSON.");
  EXPECT_EQ(verdict("{\n# none\n}"), "2:1: Comments are not allowed in JSON.");
}

TEST(Read_Documents, rejects_commas_and_colons_out_of_place) {
  EXPECT_EQ(verdict("{\"a\": 1,}"), "1:9: Expected a key in double quotes.");
  EXPECT_EQ(verdict("[1,]"), "1:4: Expected a value.");
  EXPECT_EQ(verdict("[,1]"), "1:2: Expected a value.");
  EXPECT_EQ(verdict("{\"a\" 1}"), "1:6: Expected a colon.");
  EXPECT_EQ(verdict("{\"a\": 1 \"b\": 2}"), "1:9: Expected a comma or a closing brace.");
  EXPECT_EQ(verdict("[1 2]"), "1:4: Expected a comma or a closing bracket.");
  EXPECT_EQ(verdict("[1}"), "1:3: Expected a comma or a closing bracket.");
  EXPECT_EQ(verdict("{\"a\": 1]"), "1:8: Expected a comma or a closing brace.");
  EXPECT_EQ(verdict("{1: 2}"), "1:2: Expected a key in double quotes.");
  EXPECT_EQ(verdict("{'a': 2}"), "1:2: Expected a key in double quotes.");
}

TEST(Read_Documents, rejects_numbers_that_json_does_not_know) {
  EXPECT_EQ(verdict("[01]"), "1:2: A number must not have leading zeros.");
  EXPECT_EQ(verdict("[-00.5]"), "1:3: A number must not have leading zeros.");
  EXPECT_EQ(verdict("[1.]"), "1:4: Expected a digit.");
  EXPECT_EQ(verdict("[1.e5]"), "1:4: Expected a digit.");
  EXPECT_EQ(verdict("[1e]"), "1:4: Expected a digit.");
  EXPECT_EQ(verdict("[1e+]"), "1:5: Expected a digit.");
  EXPECT_EQ(verdict("[-]"), "1:3: Expected a digit.");
  for (const char* text : {"[+1]", "[.5]", "[NaN]", "[Infinity]"}) {
    EXPECT_EQ(verdict(text), "1:2: Expected a value.") << text;
  }
  EXPECT_EQ(verdict("[-Infinity]"), "1:3: Expected a digit.");
  EXPECT_EQ(verdict("[0x10]"), "1:3: Expected a comma or a closing bracket.");
}

TEST(Read_Documents, rejects_words_that_are_no_values) {
  for (const char* text : {"[True]", "[nul]", "[undefined]", "[']"}) {
    EXPECT_EQ(verdict(text), "1:2: Expected a value.") << text;
  }
  EXPECT_EQ(verdict("[truely]"), "1:6: Expected a comma or a closing bracket.");
}

TEST(Read_Documents, rejects_escapes_that_json_does_not_know) {
  for (const char* text : {R"(["\x"])", R"(["\'"])", R"(["\U0041"])", "[\"\\\n\"]"}) {
    EXPECT_EQ(verdict(text), "1:3: Unknown escape sequence.") << text;
  }
  for (const char* text : {R"(["\u12"])", R"(["\u12G4"])", R"(["\u"])", R"(["\u-123"])"}) {
    EXPECT_EQ(verdict(text), "1:3: \\u must be followed by four hexadecimal digits.") << text;
  }
}

TEST(Read_Documents, rejects_escapes_that_stand_for_half_a_letter) {
  for (const char* text : {R"(["\udc00"])", R"(["\ud800"])", R"(["\ud800x"])", R"(["\ud800\n"])",
                           R"(["\uD800\u0041"])", R"(["\ud800\ud800"])", R"(["\uDFFF\ud800"])"}) {
    EXPECT_EQ(verdict(text), "1:3: The escape sequence is half of a surrogate pair.") << text;
  }
  EXPECT_EQ(verdict(R"({"\udc00": 1})"), "1:3: The escape sequence is half of a surrogate pair.");
}

TEST(Read_Documents, rejects_control_characters_that_are_not_escaped) {
  constexpr auto complaint = "A control character in a string must be escaped.";
  EXPECT_EQ(verdict("[\"a\nb\"]"), std::string("1:4: ") + complaint);
  EXPECT_EQ(verdict(std::string("[\"\0\"]", 5)), std::string("1:3: ") + complaint);
  EXPECT_EQ(verdict("[\x01]"), "1:2: Expected a value.");
}

TEST(Read_Documents, rejects_a_key_that_comes_twice_where_it_comes_again) {
  EXPECT_EQ(verdict("{\"a\": 1, \"b\": 2, \"a\": 3}"), "1:18: Duplicate key: 'a'");
  EXPECT_EQ(verdict("{\"a\": 1,\r\n \"\\u0061\": 3}"), "2:2: Duplicate key: 'a'");
  EXPECT_EQ(verdict("{\"Tür\": {\"ü\": 1, \"ü\": 2}}"), "1:18: Duplicate key: 'ü'");
  EXPECT_EQ(verdict("{\"a\": 1,\r\r\n\r \"a\": 3}"), "2:3: Duplicate key: 'a'");
  EXPECT_EQ(verdict("\xEF\xBB\xBF{\"a\": 1, \"a\": 3}"), "1:10: Duplicate key: 'a'");
  EXPECT_EQ(verdict("{\"\\n\": 1, \"\\n\": 2}"), "1:11: Duplicate key: '\n'");
}

TEST(Read_Documents, tells_of_a_key_that_comes_twice_and_not_of_what_follows_from_it) {
  EXPECT_EQ(verdict("{\"a\": 1, \"a\": {\"b\": 2}, \"c\": 3}"), "1:10: Duplicate key: 'a'");
}

TEST(Read_Documents, rejects_numbers_that_are_too_large_for_any_use) {
  EXPECT_EQ(verdict("[1, 1e999]"), "1:5: '1e999' is not a number.");
}

TEST(Read_Documents, accepts_nesting_as_deep_as_the_reader_does_and_no_deeper) {
  const auto nested = [](std::size_t levels, const std::string& inside) {
    return repeated("[", levels) + inside + repeated("]", levels);
  };
  EXPECT_EQ(verdict(nested(deepest_nesting, "")), "accepted");
  EXPECT_EQ(verdict(nested(deepest_nesting - 1, "7")), "accepted");
  EXPECT_EQ(verdict(nested(deepest_nesting, "7")),
            "1:1001: The document is nested more than 1000 levels deep.");
  EXPECT_EQ(verdict(nested(deepest_nesting + 1, "")),
            "1:1001: The document is nested more than 1000 levels deep.");
  EXPECT_EQ(verdict(nested(1000000, "")),
            "1:1001: The document is nested more than 1000 levels deep.");
  EXPECT_EQ(verdict(repeated("{\"a\":", 2000)),
            "1:5001: The document is nested more than 1000 levels deep.");
}

std::string verdict_with(std::size_t most_values, const std::string& text) {
  try {
    const Json_Document document(text, most_values);
    return "accepted";
  } catch (const Document_Error& error) {
    return std::to_string(error.location.line) + ":" + std::to_string(error.location.column) +
           ": " + error.what() + " " + error.line;
  }
}

TEST(Read_Documents, accepts_as_many_values_as_allowed_and_no_more) {
  const std::string text = "{\"a\": [1, null,\n true], \"b\": {\"c\": \"d\"}}";  // 7
  EXPECT_EQ(verdict_with(7, text), "accepted");
  EXPECT_EQ(verdict_with(6, text),
            "2:20: The document has more than 6 values.  true], \"b\": {\"c\": \"d\"}}");
  EXPECT_EQ(verdict_with(4, text),
            "2:2: The document has more than 4 values.  true], \"b\": {\"c\": \"d\"}}");
  EXPECT_EQ(verdict_with(1, "[]"), "accepted");
  EXPECT_EQ(verdict_with(0, "[]"), "1:1: The document has more than 0 values. []");
  EXPECT_EQ(verdict_with(3, "[[],[],[]]"), "1:8: The document has more than 3 values. [[],[],[]]");
}

TEST(Read_Documents, has_an_end_of_values_where_nothing_is_said_of_them) {
  const std::string elements = repeated("0,", default_most_values - 2);
  EXPECT_EQ(find_grammar_fault("[" + elements + "0]"), std::nullopt);

  const auto fault = find_grammar_fault("[" + elements + "0,0]");

  ASSERT_TRUE(fault);
  EXPECT_EQ(fault->message, "The document has more than 20000000 values.");
  EXPECT_EQ(fault->offset, 2 * (default_most_values - 1) + 1);
}

TEST(Locations_In_Documents, count_columns_in_characters) {
  EXPECT_EQ(verdict("{\"Tür\": \"門\",, }"), "1:13: Expected a key in double quotes.");
  EXPECT_EQ(verdict("{\"\x80\xFF\": x}"), "1:8: Expected a value.");
}

auto is_at(std::size_t line, std::size_t column) {
  return testing::AllOf(Field(&Location::line, line), Field(&Location::column, column));
}

TEST(Locations_In_Documents, are_those_of_values_and_of_keys) {
  const Json_Document document("{\n \"Tür\" :\n  [ 1,\"門\", {}],\"b\\\"\\\\\":\t-5}");
  const Json::Value& root = document.value();
  EXPECT_THAT(document.locate(root), is_at(1, 1));
  EXPECT_THAT(document.locate(root["Tür"]), is_at(3, 3));
  EXPECT_THAT(document.locate_key(root["Tür"]), is_at(2, 2));
  EXPECT_THAT(document.locate(root["Tür"][1]), is_at(3, 7));
  EXPECT_THAT(document.locate(root["Tür"][2]), is_at(3, 12));
  EXPECT_THAT(document.locate_key(root["b\"\\"]), is_at(3, 16));
  EXPECT_THAT(document.locate(root["b\"\\"]), is_at(3, 25));
}

TEST(Locations_In_Documents, do_not_count_a_byte_order_mark) {
  const Json_Document document("\xEF\xBB\xBF{\"a\": 1}");
  EXPECT_THAT(document.locate(document.value()), is_at(1, 1));
  EXPECT_THAT(document.locate(document.value()["a"]), is_at(1, 7));
  EXPECT_THAT(document.locate_key(document.value()["a"]), is_at(1, 2));
  EXPECT_EQ(document.line(1), "{\"a\": 1}");
}

TEST(Locations_In_Documents, are_right_however_long_the_document_and_its_lines_are) {
  std::string text = "[";
  for (int element = 0; element < 5000; ++element) {
    text += "\"門\",";
  }
  text += "\n0,\n0,";
  for (int line = 0; line < 5000; ++line) {
    text += "\n " + std::to_string(line) + ",";
  }
  const Json_Document document(text + "null]");
  const Json::Value& root = document.value();
  EXPECT_THAT(document.locate(root[4999]), is_at(1, 2 + 4 * 4999));
  EXPECT_THAT(document.locate(root[5001]), is_at(3, 1));
  EXPECT_THAT(document.locate(root[5002]), is_at(4, 2));
  EXPECT_THAT(document.locate(root[5002 + 4999]), is_at(5003, 2));
  EXPECT_EQ(document.line(2), "0,");
  EXPECT_EQ(document.line(4), " 0,");
  EXPECT_EQ(document.line(2504), " 2500,");
  EXPECT_EQ(document.line(5003), " 4999,null]");
}

TEST(Lines_Of_Documents, come_without_their_end) {
  const Json_Document document("{\r\n\n\"a\": 1}\n");
  EXPECT_EQ(document.line(1), "{");
  EXPECT_EQ(document.line(2), "");
  EXPECT_EQ(document.line(3), "\"a\": 1}");
}

TEST(Lines_Of_Documents, are_empty_where_there_is_none) {
  const Json_Document document("{\n}");
  EXPECT_EQ(document.line(0), "");
  EXPECT_EQ(document.line(3), "");
}

class Document_Files : public testing::Test {
 protected:
  Document_Files() { std::ofstream(path_, std::ios::binary) << "{\"a\": 1}"; }
  ~Document_Files() override { std::filesystem::remove(path_); }

  const std::string path_ = testing::TempDir() + "document." + std::to_string(::getpid());
};

std::string complaint_of_reading(const std::string& path, std::size_t limit = largest_document) {
  try {
    Json_Document::read(path, limit);
    return {};
  } catch (const Document_Error& error) {
    EXPECT_EQ(error.location.line, 0);
    return error.what();
  }
}

TEST_F(Document_Files, are_read_up_to_the_limit) {
  EXPECT_EQ(Json_Document::read(path_).text(), "{\"a\": 1}");
  EXPECT_EQ(complaint_of_reading(path_, 8), "");
  EXPECT_EQ(complaint_of_reading(path_, 7),
            path_ + " is larger than the maximum size of a document (7 bytes)");
}

TEST_F(Document_Files, that_cannot_be_read_are_told_with_the_reason) {
  EXPECT_EQ(complaint_of_reading(path_ + ".not"),
            "cannot open " + path_ + ".not: No such file or directory");
  EXPECT_EQ(complaint_of_reading(path_ + "/inside"),
            "cannot open " + path_ + "/inside: Not a directory");
  EXPECT_EQ(complaint_of_reading(testing::TempDir()),
            "cannot read " + testing::TempDir() + ": Is a directory");
}

TEST(Documents, keep_their_text_as_it_was_written) {
  const std::string text = "\xEF\xBB\xBF \r\n{\"a\": 1.50e+3 }\n\n";
  EXPECT_EQ(Json_Document(text).text(), text);
}

TEST(Documents, can_be_copied_and_moved_with_their_locations) {
  auto document = std::make_unique<Json_Document>("{\n\"a\": 1}");
  const Json_Document copy = *document;
  const Json_Document moved = std::move(*document);
  document.reset();
  EXPECT_THAT(copy.locate(copy.value()["a"]), is_at(2, 6));
  EXPECT_THAT(moved.locate(moved.value()["a"]), is_at(2, 6));
}

}  // namespace
}  // namespace kuv::vemora::embedded_server
