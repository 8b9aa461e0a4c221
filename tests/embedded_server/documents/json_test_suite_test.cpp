// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only

// What JSONTestSuite (nst/JSONTestSuite) tests of a JSON reader, each case in a text of our own:
// those that RFC 8259 allows, those that it forbids, and those that it leaves to the reader. Two
// rules of ours are stricter: a document is an object or an array, and no key comes twice.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "vemora/embedded_server/documents/json_document.h"

namespace kuv::vemora::embedded_server {
namespace {

using namespace std::string_literals;

struct Case {
  const char* about;
  std::string text;
  std::string verdict;  ///< "line:column: what is wrong"
};

const std::string taken = "taken";

std::string repeated(const std::string& text, int times) {
  std::string all;
  for (; times > 0; --times) {
    all += text;
  }
  return all;
}

std::string verdict(const std::string& text) {
  try {
    const Json_Document document(text);
    return taken;
  } catch (const Document_Error& error) {
    return std::to_string(error.location.line) + ":" + std::to_string(error.location.column) +
           ": " + error.what();
  }
}

void expect_verdicts(const std::vector<Case>& cases) {
  for (const Case& tried : cases) {
    EXPECT_EQ(verdict(tried.text), tried.verdict) << tried.about;
  }
}

// clang-format off
std::vector<Case> texts_that_are_json() {
  return {
      {"arrays with blanks inside", "[[ ] ]"s, taken},
      {"an empty array", "[]"s, taken},
      {"an array of an empty string", "[\"\"]"s, taken},
      {"a line end behind an array", "[\"x\"]\n"s, taken},
      {"false", "[false]"s, taken},
      {"values of different kinds", "[null, 7, \"7\", {}]"s, taken},
      {"null", "[null]"s, taken},
      {"a line end behind a number", "[7\n]"s, taken},
      {"a blank before an array", " [7]"s, taken},
      {"null several times", "[7,null,null,null,8]"s, taken},
      {"a blank behind an array", "[8] "s, taken},
      {"a real number with an exponent", "[321e45]"s, taken},
      {"zero with a positive exponent", "[0e+7]"s, taken},
      {"zero with an exponent", "[0e7]"s, taken},
      {"a blank before a number", "[ 5]"s, taken},
      {"a number close to zero", "[-0.000000000000000000000000000000000000000000000000000000000000000000000000000008]"s, taken},
      {"an integer with an exponent", "[30e1]"s, taken},
      {"minus zero", "[-0]"s, taken},
      {"a negative integer", "[-321]"s, taken},
      {"minus one", "[-1]"s, taken},
      {"minus zero among others", "[7, -0]"s, taken},
      {"a capital E", "[2E33]"s, taken},
      {"a capital E with a negative exponent", "[2E-3]"s, taken},
      {"a capital E with a positive exponent", "[2E+3]"s, taken},
      {"an exponent of a real number", "[321e54]"s, taken},
      {"a fraction and an exponent", "[321.654e87]"s, taken},
      {"a negative exponent", "[2e-3]"s, taken},
      {"a positive exponent", "[2e+3]"s, taken},
      {"a simple integer", "[321]"s, taken},
      {"a simple real number", "[321.654]"s, taken},
      {"an object of two members", "{\"one\":\"uno\", \"two\":\"due\"}"s, taken},
      {"an object of one member", "{\"one\":\"uno\"}"s, taken},
      {"a key that comes twice", "{\"k\":\"v\",\"k\":\"w\"}"s, "1:10: Duplicate key: 'k'"},
      {"a key that comes twice with its value", "{\"k\":\"v\",\"k\":\"v\"}"s, "1:10: Duplicate key: 'k'"},
      {"an empty object", "{}"s, taken},
      {"an empty key", "{\"\":7}"s, taken},
      {"an escaped NUL in a key", "{\"one\\u0000uno\": 7}"s, taken},
      {"numbers at the limits", "{ \"least\": -3.0e+27, \"most\": 3.0e+27 }"s, taken},
      {"long strings", "{\"list\":[{\"id\": \"yyyyyyyyyyyyyyyyyyyyyyyyyyyyyyyyyyyyyyyyyyyyyyyyyyyyyyyyyyyyyyyyyyyyyy\"}], \"id\": \"yyyyyyyyyyyyyyyyyyyyyyyyyyyyyyyyyyyyyyyyyyyyyyyyyyyyyyyyyyyyyyyyyyyyyy\"}"s, taken},
      {"an object of an array", "{\"k\":[]}"s, taken},
      {"escaped letters beyond ASCII", "{\"name\":\"\\u041c\\u0438\\u0440 \\u0434\\u043e\\u043c\" }"s, taken},
      {"line ends in an object", "{\n\"k\": \"v\"\n}"s, taken},
      {"escapes for characters of one, two and three bytes", "[\"\\u0061\\u013b\\u20ab\"]"s, taken},
      {"a surrogate pair", "[\"\\uD83d\\uDe3a\"]"s, taken},
      {"surrogate pairs", "[\"\\ud83d\\ude3a\\ud83d\\udc4d\"]"s, taken},
      {"every escape of one letter", "[\"\\t\\r\\n\\f\\b\\/\\\\\\\"\"]"s, taken},
      {"an escaped backslash before what looks like an escape", "[\"\\\\u0001\"]"s, taken},
      {"an escaped quote", "[\"\\\"\"]"s, taken},
      {"what looks like a comment in a string", "[\"x/*y*/z/*w//q\"]"s, taken},
      {"an escaped backslash before a letter", "[\"\\\\b\"]"s, taken},
      {"an escaped backslash before an n", "[\"\\\\n\"]"s, taken},
      {"an escaped control character", "[\"\\u0013\"]"s, taken},
      {"an escaped noncharacter", "[\"\\uFFFE\"]"s, taken},
      {"a string in an array", "[\"xyz\"]"s, taken},
      {"a blank before a string", "[ \"xyz\"]"s, taken},
      {"the last surrogates", "[\"\\uDBFE\\uDFFF\"]"s, taken},
      {"an escaped no-break space", "[\"more\\u00A0room\"]"s, taken},
      {"the noncharacter U+10FFFF", "[\"\xF4\x8F\xBF\xBF\"]"s, taken},
      {"the noncharacter U+FFFF", "[\"\xEF\xBF\xBF\"]"s, taken},
      {"an escaped NUL", "[\"\\u0000\"]"s, taken},
      {"an escaped character of one byte", "[\"\\u002d\"]"s, taken},
      {"a letter of two bytes", "[\"\xCF\x81\"]"s, taken},
      {"a reserved character", "[\"\xF0\x9B\xBF\xBE\"]"s, taken},
      {"plain ASCII", "[\"xyz \"]"s, taken},
      {"a string of a blank", "[\" \"]"s, taken},
      {"a musical symbol as a surrogate pair", "[\"\\uD834\\uDd1f\"]"s, taken},
      {"an escaped character of three bytes", "[\"\\u0822\"]"s, taken},
      {"an escaped character of two bytes", "[\"\\u0124\"]"s, taken},
      {"the line separator", "[\"\xE2\x80\xA8\"]"s, taken},
      {"the paragraph separator", "[\"\xE2\x80\xA9\"]"s, taken},
      {"escapes beside letters", "[\"\\u0062\\u30af\\u30eaxyz\"]"s, taken},
      {"an escaped line end", "[\"one\\u000Atwo\"]"s, taken},
      {"the delete character", "[\"\x7F\"]"s, taken},
      {"an escape with digits in both cases", "[\"\\uA66e\"]"s, taken},
      {"characters of three bytes", "[\"\xE2\x8D\x82\xE3\x89\x88\xE2\x8D\x82\"]"s, taken},
      {"an escaped quote by its number", "[\"\\u0022\"]"s, taken},
      {"the noncharacter U+10FFFE, escaped", "[\"\\uDBFF\\uDFFE\"]"s, taken},
      {"the noncharacter U+1FFFE, escaped", "[\"\\uD83F\\uDFFE\"]"s, taken},
      {"an escaped zero width space", "[\"\\u200B\"]"s, taken},
      {"an escaped invisible plus", "[\"\\u2064\"]"s, taken},
      {"the noncharacter U+FDD0, escaped", "[\"\\uFDD0\"]"s, taken},
      {"the noncharacter U+FFFE, escaped", "[\"\\uFFFE x\"]"s, taken},
      {"an escaped backslash by its number", "[\"\\u005C\"]"s, taken},
      {"a character of four bytes", "[\"\xE2\x82\xAC\xF0\x9D\x84\x9F\"]"s, taken},
      {"the delete character among others", "[\"x\x7Fx\"]"s, taken},
      {"false alone", "false"s, "1:1: A document must be an object or an array."},
      {"an integer alone", "24"s, "1:1: A document must be an object or an array."},
      {"a negative real number alone", "-0.7"s, "1:1: A document must be an object or an array."},
      {"null alone", "null"s, "1:1: A document must be an object or an array."},
      {"a string alone", "\"xyz\""s, "1:1: A document must be an object or an array."},
      {"true alone", "true"s, "1:1: A document must be an object or an array."},
      {"an empty string alone", "\"\""s, "1:1: A document must be an object or an array."},
      {"a line end behind all", "[\"y\"]\n"s, taken},
      {"true", "[true]"s, taken},
      {"blanks around an empty array", " [] "s, taken},
  };
}

std::vector<Case> texts_that_are_none() {
  return {
      {"no comma between elements", "[7 true]"s, "1:4: Expected a comma or a closing bracket."},
      {"a byte that is no UTF-8 between elements", "[b\xE6]"s, "1:2: Expected a value."},
      {"a colon instead of a comma", "[\"\": 7]"s, "1:4: Expected a comma or a closing bracket."},
      {"a comma behind the array", "[\"\"],"s, "1:5: Unexpected text after the end of the document."},
      {"a comma before the first element", "[,7]"s, "1:2: Expected a value."},
      {"two commas between elements", "[7,,8]"s, "1:4: Expected a value."},
      {"two commas behind the last element", "[\"y\",,]"s, "1:6: Expected a value."},
      {"a second closing bracket", "[\"y\"]]"s, "1:6: Unexpected text after the end of the document."},
      {"a comma behind the last element", "[\"\",]"s, "1:5: Expected a value."},
      {"no end of an array", "[\"y\""s, "1:5: The document ends too early."},
      {"no end of an array behind no value", "[y"s, "1:2: Expected a value."},
      {"no comma before an inner array", "[4[5]]"s, "1:3: Expected a comma or a closing bracket."},
      {"a byte that is no UTF-8 as an element", "[\xFE]"s, "1:2: Expected a value."},
      {"a semicolon between elements", "[7:8]"s, "1:3: Expected a comma or a closing bracket."},
      {"a comma alone in an array", "[,]"s, "1:2: Expected a value."},
      {"a minus alone in an array", "[-]"s, "1:3: Expected a digit."},
      {"no element before a comma", "[   , \"\"]"s, "1:5: Expected a value."},
      {"line ends in an array without an end", "[\"b\",\n5\n,7,"s, "3:4: The document ends too early."},
      {"a comma behind a number", "[7,]"s, "1:4: Expected a value."},
      {"several commas behind a number", "[7,,]"s, "1:4: Expected a value."},
      {"a vertical tab and a form feed", "[\"\x0B""b\"\\f]"s, "1:3: A control character in a string must be escaped."},
      {"a star in an array", "[*]"s, "1:2: Expected a value."},
      {"no end behind a string", "[\"\" "s, "1:5: The document ends too early."},
      {"no end behind a comma", "[7,"s, "1:4: The document ends too early."},
      {"no end behind line ends", "[7,\n8\n,8"s, "3:3: The document ends too early."},
      {"no end behind an object", "[{}"s, "1:4: The document ends too early."},
      {"false without its end", "[fals]"s, "1:2: Expected a value."},
      {"null without its end", "[nul]"s, "1:2: Expected a value."},
      {"true without its end", "[tru]"s, "1:2: Expected a value."},
      {"a byte NUL behind a number", "[321\x00]"s, "1:5: Expected a comma or a closing bracket."},
      {"a point before a minus", "[.-7]"s, "1:2: Expected a value."},
      {"no digit before the point, with an exponent", "[.3e-2]"s, "1:2: Expected a value."},
      {"two signs", "[++4321]"s, "1:2: Expected a value."},
      {"a plus sign", "[+7]"s, "1:2: Expected a value."},
      {"infinity with a plus sign", "[+Inf]"s, "1:2: Expected a value."},
      {"two points in a number", "[0.2.1]"s, "1:5: Expected a comma or a closing bracket."},
      {"no exponent behind a fraction and an e", "[0.4e]"s, "1:6: Expected a digit."},
      {"no exponent behind a fraction, an e and a sign", "[0.4e+]"s, "1:7: Expected a digit."},
      {"no fraction before an exponent", "[0.e2]"s, "1:4: Expected a digit."},
      {"no exponent behind zero and a capital E", "[0E]"s, "1:4: Expected a digit."},
      {"no exponent behind zero, a capital E and a sign", "[0E+]"s, "1:5: Expected a digit."},
      {"a leading zero behind a minus", "[-02]"s, "1:3: A number must not have leading zeros."},
      {"no exponent behind zero and an e", "[0e]"s, "1:4: Expected a digit."},
      {"no exponent behind zero, an e and a sign", "[0e+]"s, "1:5: Expected a digit."},
      {"a second point behind a fraction", "[-2.0.]"s, "1:6: Expected a comma or a closing bracket."},
      {"no exponent behind a point, a zero and an e", "[2.0e]"s, "1:6: Expected a digit."},
      {"a minus without an exponent", "[2.0e-]"s, "1:7: Expected a digit."},
      {"a plus without an exponent", "[2.0e+]"s, "1:7: Expected a digit."},
      {"a blank in a number", "[2 000.0]"s, "1:4: Expected a comma or a closing bracket."},
      {"two letters of an exponent", "[2eE3]"s, "1:4: Expected a digit."},
      {"no fraction behind a minus", "[-3.]"s, "1:5: Expected a digit."},
      {"no fraction before a positive exponent", "[3.e+2]"s, "1:4: Expected a digit."},
      {"no fraction before an exponent of three", "[3.e2]"s, "1:4: Expected a digit."},
      {"no fraction before a negative exponent", "[3.e-2]"s, "1:4: Expected a digit."},
      {"no fraction and no exponent", "[8.e+]"s, "1:4: Expected a digit."},
      {"a sum", "[2+1]"s, "1:3: Expected a comma or a closing bracket."},
      {"a hexadecimal number of one digit", "[0x2]"s, "1:3: Expected a comma or a closing bracket."},
      {"a hexadecimal number of two digits", "[0x24]"s, "1:3: Expected a comma or a closing bracket."},
      {"Inf", "[Inf]"s, "1:2: Expected a value."},
      {"Infinity", "[Infinity]"s, "1:2: Expected a value."},
      {"two signs of an exponent", "[0e+-2]"s, "1:5: Expected a digit."},
      {"letters behind a negative number", "[-321.321abc]"s, "1:10: Expected a comma or a closing bracket."},
      {"a byte that is no UTF-8 behind an integer", "[321\xE6]"s, "1:5: Expected a comma or a closing bracket."},
      {"a byte that is no UTF-8 in an exponent", "[2e2\xE6]"s, "1:5: Expected a comma or a closing bracket."},
      {"a byte that is no UTF-8 behind zero", "[0\xE6]\n"s, "1:3: Expected a comma or a closing bracket."},
      {"infinity with a minus", "[-Infinity]"s, "1:3: Expected a digit."},
      {"a minus before letters", "[-abc]"s, "1:3: Expected a digit."},
      {"a blank behind a minus", "[- 2]"s, "1:3: Expected a digit."},
      {"NaN", "[NaN]"s, "1:2: Expected a value."},
      {"NaN with a minus", "[-NaN]"s, "1:3: Expected a digit."},
      {"a leading zero of a negative integer", "[-021]"s, "1:3: A number must not have leading zeros."},
      {"no digit between a minus and the point", "[-.321]"s, "1:3: Expected a digit."},
      {"a letter behind a negative number", "[-2x]"s, "1:4: Expected a comma or a closing bracket."},
      {"a letter in an exponent", "[2ea]"s, "1:4: Expected a digit."},
      {"a byte that is no UTF-8 behind an e", "[2e\xE6]"s, "1:4: Expected a digit."},
      {"no digit behind the point", "[2.]"s, "1:4: Expected a digit."},
      {"no digit before the point", "[.321]"s, "1:2: Expected a value."},
      {"a full-width digit", "[\xEF\xBC\x92]"s, "1:2: Expected a value."},
      {"letters in a number", "[2.8011670034498-5.4]"s, "1:17: Expected a comma or a closing bracket."},
      {"a letter in a number", "[2.8011670034498H-5]"s, "1:17: Expected a comma or a closing bracket."},
      {"a leading zero", "[021]"s, "1:2: A number must not have leading zeros."},
      {"a leading zero before a point", "[-00.5]"s, "1:3: A number must not have leading zeros."},
      {"two zeros before a point", "[00.5]"s, "1:2: A number must not have leading zeros."},
      {"two zeros before an exponent", "[00e2]"s, "1:2: A number must not have leading zeros."},
      {"two zeros before an exponent, behind a minus", "[-00e2]"s, "1:3: A number must not have leading zeros."},
      {"a value that is none", "[\"y\", truth]"s, "1:7: Expected a value."},
      {"a bracket instead of a key", "{[: \"y\"}\n"s, "1:2: Expected a key in double quotes."},
      {"a comma instead of a colon", "{\"y\", null}"s, "1:5: Expected a colon."},
      {"two colons", "{\"y\"::\"c\"}"s, "1:6: Expected a value."},
      {"characters without quotes instead of a key", "{\xF0\x9F\x87\xA9\xF0\x9F\x87\xAA}"s, "1:2: Expected a key in double quotes."},
      {"letters behind a value", "{\"b\":\"b\" 321}"s, "1:10: Expected a comma or a closing brace."},
      {"a key in single quotes", "{key: 'value'}"s, "1:2: Expected a key in double quotes."},
      {"a continuation byte in a key, and a comma at the end", "{\"\xB8\":\"0\",}"s, "1:10: Expected a key in double quotes."},
      {"no colon", "{\"b\" c}"s, "1:6: Expected a colon."},
      {"no key", "{:\"c\"}"s, "1:2: Expected a key in double quotes."},
      {"no colon before a string", "{\"b\" \"c\"}"s, "1:6: Expected a colon."},
      {"no value behind a colon", "{\"b\":"s, "1:6: The document ends too early."},
      {"no colon and no end", "{\"b\""s, "1:5: Expected a colon."},
      {"a number as a key", "{2:2}"s, "1:2: Expected a key in double quotes."},
      {"a huge number as a key", "{8888E8888:2}"s, "1:2: Expected a key in double quotes."},
      {"words as keys and values", "{null:null,null:null}"s, "1:2: Expected a key in double quotes."},
      {"several commas behind the last member", "{\"no\":0,,,,,}"s, "1:9: Expected a key in double quotes."},
      {"a key in single quotes at the beginning", "{'b':0}"s, "1:2: Expected a key in double quotes."},
      {"a comma behind the last member", "{\"no\":0,}"s, "1:9: Expected a key in double quotes."},
      {"a comment behind the object", "{\"b\":\"c\"}/**/"s, "1:10: Comments are not allowed in JSON."},
      {"a comment without an end behind the object", "{\"b\":\"c\"}/**//"s, "1:10: Comments are not allowed in JSON."},
      {"a comment of two slashes behind the object", "{\"b\":\"c\"}//"s, "1:10: Comments are not allowed in JSON."},
      {"half of a comment behind the object", "{\"b\":\"c\"}/"s, "1:10: Comments are not allowed in JSON."},
      {"two commas between members", "{\"b\":\"c\",,\"d\":\"e\"}"s, "1:10: Expected a key in double quotes."},
      {"a key without quotes", "{b: \"c\"}"s, "1:2: Expected a key in double quotes."},
      {"a value without its closing quote", "{\"b\":\"b"s, "1:6: The string that begins here has no end."},
      {"a string alone in an object", "{ \"xyz\" : \"yz\", \"zx\" }"s, "1:22: Expected a colon."},
      {"a hash behind the object", "{\"b\":\"c\"}#"s, "1:10: Comments are not allowed in JSON."},
      {"a blank alone", " "s, "1:2: The document is empty."},
      {"half of a surrogate pair and an escape", "[\"\\uD801\\\"]"s, "1:3: The escape sequence is half of a surrogate pair."},
      {"half of a surrogate pair and an escape without digits", "[\"\\uD801\\u\"]"s, "1:9: \\u must be followed by four hexadecimal digits."},
      {"half of a surrogate pair and an escape of one digit", "[\"\\uD801\\u2\"]"s, "1:9: \\u must be followed by four hexadecimal digits."},
      {"half of a surrogate pair and an escape with a letter", "[\"\\uD801\\u2x\"]"s, "1:9: \\u must be followed by four hexadecimal digits."},
      {"a letter with an accent without quotes", "[\xC3\xA8]"s, "1:2: Expected a value."},
      {"a backslash and a byte NUL", "[\"\\\x00\"]"s, "1:3: Unknown escape sequence."},
      {"an escape of x", "[\"\\x01\"]"s, "1:3: Unknown escape sequence."},
      {"three backslashes before the quote", "[\"\\\\\\\"]"s, "1:2: The string that begins here has no end."},
      {"an escaped tab that is one", "[\"\\\t\"]"s, "1:3: Unknown escape sequence."},
      {"an escaped character of four bytes", "[\"\\\xF0\x9F\x8C\x81\"]"s, "1:3: Unknown escape sequence."},
      {"a backslash alone at the end", "[\"\\\"]"s, "1:2: The string that begins here has no end."},
      {"an escape of three digits", "[\"\\u00B\"]"s, "1:3: \\u must be followed by four hexadecimal digits."},
      {"half of a surrogate pair and half an escape", "[\"\\uD835\\uDd\"]"s, "1:9: \\u must be followed by four hexadecimal digits."},
      {"half of a surrogate pair and an unknown escape", "[\"\\uD801\\uD801\\x\"]"s, "1:3: The escape sequence is half of a surrogate pair."},
      {"an escape of a letter", "[\"\\b\\y\"]"s, "1:5: Unknown escape sequence."},
      {"an escape of letters that are no digits", "[\"\\uyyyy\"]"s, "1:3: \\u must be followed by four hexadecimal digits."},
      {"a byte that is no UTF-8 behind a backslash", "[\"\\\xE6\"]"s, "1:3: Unknown escape sequence."},
      {"a byte that is no UTF-8 among digits of an escape", "[\"\\u\xE6\"]"s, "1:3: \\u must be followed by four hexadecimal digits."},
      {"an escape before a string", "[\\u0021\"xyz\"]"s, "1:2: Expected a value."},
      {"an escape without quotes", "[\\t]"s, "1:2: Expected a value."},
      {"an octal escape", "[\"\\011\"]"s, "1:3: Unknown escape sequence."},
      {"a quote alone", "[\""s, "1:2: The string that begins here has no end."},
      {"single quotes", "['a single quote']"s, "1:2: Expected a value."},
      {"letters without quotes", "[xyz]"s, "1:2: Expected a value."},
      {"no end behind a backslash", "[\"\\"s, "1:3: Unknown escape sequence."},
      {"a byte NUL in a string", "[\"b\x00""b\"]"s, "1:4: A control character in a string must be escaped."},
      {"a line end in a string", "[\"one\ntwo\"]"s, "1:6: A control character in a string must be escaped."},
      {"a tab in a string", "[\"\t\"]"s, "1:3: A control character in a string must be escaped."},
      {"an escape of a capital U", "[\"\\UA66E\"]"s, "1:3: Unknown escape sequence."},
      {"letters behind a string", "[\"\"y"s, "1:4: Expected a comma or a closing bracket."},
      {"very many opening brackets", repeated("[", 5000), "1:1001: The document is nested more than 1000 levels deep."},
      {"angle brackets around a point", "<.>"s, "1:1: A document must be an object or an array."},
      {"angle brackets around null", "[<null>]"s, "1:2: Expected a value."},
      {"a letter behind the array", "[2]y"s, "1:4: Unexpected text after the end of the document."},
      {"a closing bracket too many", "[2]]"s, "1:4: Unexpected text after the end of the document."},
      {"a string without its closing quote", "[\"xyz]"s, "1:2: The string that begins here has no end."},
      {"letters of two bytes as a document", "b\xC3\xA5"s, "1:1: A document must be an object or an array."},
      {"True with a capital letter", "[True]"s, "1:2: Expected a value."},
      {"a closing bracket without an opening one", "2]"s, "1:1: A document must be an object or an array."},
      {"a comma instead of the closing brace", "{\"y\": false,"s, "1:13: The document ends too early."},
      {"two arrays", "[][]"s, "1:3: Unexpected text after the end of the document."},
      {"a closing bracket alone", "]"s, "1:1: A document must be an object or an array."},
      {"half of a byte order mark", "\xEF\xBB{}"s, "1:1: A document must be an object or an array."},
      {"a byte that is no UTF-8 alone", "\xE6"s, "1:1: A document must be an object or an array."},
      {"an opening bracket alone", "["s, "1:2: The document ends too early."},
      {"no text at all", ""s, "1:1: The document is empty."},
      {"a byte NUL between tokens", "[\x00]"s, "1:2: Expected a value."},
      {"letters behind a number", "3@"s, "1:1: A document must be an object or an array."},
      {"a closing brace too many", "{}}"s, "1:3: Unexpected text after the end of the document."},
      {"no value and no end", "{\"\":"s, "1:5: The document ends too early."},
      {"a comment in an object", "{\"b\":/*none*/\"c\"}"s, "1:6: Comments are not allowed in JSON."},
      {"a string behind the object", "{\"b\": false} \"y\""s, "1:14: Unexpected text after the end of the document."},
      {"an apostrophe in an array without an end", "['"s, "1:2: Expected a value."},
      {"a comma in an array without an end", "[,"s, "1:2: Expected a value."},
      {"many arrays and objects without an end", repeated("[{\"\":", 700), "1:2501: The document is nested more than 1000 levels deep."},
      {"an object in an array without an end", "[{"s, "1:3: The document ends too early."},
      {"a string in an array without an end", "[\"b"s, "1:2: The string that begins here has no end."},
      {"a whole string in an array without an end", "[\"b\""s, "1:5: The document ends too early."},
      {"an opening brace alone", "{"s, "1:2: The document ends too early."},
      {"a bracket that closes an object", "{]"s, "1:2: Expected a key in double quotes."},
      {"a comma in an object without an end", "{,"s, "1:2: Expected a key in double quotes."},
      {"an array in an object without an end", "{["s, "1:2: Expected a key in double quotes."},
      {"a string in an object without an end", "{\"b"s, "1:2: The string that begins here has no end."},
      {"apostrophes in an object without an end", "{'b'"s, "1:2: Expected a key in double quotes."},
      {"a mixture of what is opened", "[\"\\{[\"\\{[\"\\{[\"\\{"s, "1:3: Unknown escape sequence."},
      {"a letter of two bytes alone", "\xC3\xA8"s, "1:1: A document must be an object or an array."},
      {"a star alone", "*"s, "1:1: A document must be an object or an array."},
      {"a hash behind all", "{\"b\":\"c\"}#{}"s, "1:10: Comments are not allowed in JSON."},
      {"a word joiner in an array", "[\xE2\x81\xA0]"s, "1:2: Expected a value."},
      {"an escape of a line end before a string", "[\\u000A\"\"]"s, "1:2: Expected a value."},
      {"no end of an array of a number", "[2"s, "1:3: The document ends too early."},
      {"half of null without an end", "[true, nul"s, "1:8: Expected a value."},
      {"half of false without an end", "[ true, fals"s, "1:9: Expected a value."},
      {"half of true without an end", "[ false, tru"s, "1:10: Expected a value."},
      {"no end of an object", "{\"xyz\":\"xyz\""s, "1:13: The document ends too early."},
      {"letters of two bytes without quotes", "\xC3\xA6"s, "1:1: A document must be an object or an array."},
      {"a byte order mark alone", "\xEF\xBB\xBF"s, "1:1: The document is empty."},
      {"a form feed between tokens", "[\x0C]"s, "1:2: Expected a value."},
      {"a word joiner before an array", "\xE2\x81\xA0[]"s, "1:1: A document must be an object or an array."},
  };
}

std::vector<Case> texts_that_readers_decide_about() {
  return {
      {"a huge negative exponent", "[321.654e-789]"s, taken},
      {"a huge exponent", "[0.5e00776688998877665544332211000998877]"s, "1:2: '0.5e00776688998877665544332211000998877' is not a number."},
      {"a huge exponent of a negative integer", "[-2e+8888]"s, "1:2: '-2e+8888' is not a number."},
      {"a huge exponent of a real number", "[2.4e8888]"s, "1:2: '2.4e8888' is not a number."},
      {"a negative number beyond every double", "[-321321e98765]"s, "1:2: '-321321e98765' is not a number."},
      {"a number beyond every double", "[321321e98765]"s, "1:2: '321321e98765' is not a number."},
      {"a number that is as good as zero", "[321e-87654321]"s, taken},
      {"a negative integer beyond 64 bits", "[-321321321321321321321321321321]"s, taken},
      {"an integer beyond 64 bits", "[200000000000000000000]"s, taken},
      {"a very long negative integer", "[-456456456456456456456456456456456456456456456456]"s, taken},
      {"the second half of a surrogate pair as a key", "{\"\\uDFAB\":1}"s, "1:3: The escape sequence is half of a surrogate pair."},
      {"the first half of a surrogate pair without the second", "[\"\\uDADB\"]"s, "1:3: The escape sequence is half of a surrogate pair."},
      {"the first half of a surrogate pair and another escape", "[\"\\uD889\\u2345\"]"s, "1:3: The escape sequence is half of a surrogate pair."},
      {"the first half of a surrogate pair and an escape of a letter", "[\"\\uD801\\n\"]"s, "1:3: The escape sequence is half of a surrogate pair."},
      {"the first half of a surrogate pair and a letter", "[\"\\uDd1eb\"]"s, "1:3: The escape sequence is half of a surrogate pair."},
      {"two first halves and an escape of a letter", "[\"\\uD801\\uD801\\n\"]"s, "1:3: The escape sequence is half of a surrogate pair."},
      {"a first half of a surrogate pair with digits in both cases", "[\"\\ud801\"]"s, "1:3: The escape sequence is half of a surrogate pair."},
      {"a first half of a surrogate pair and letters", "[\"\\ud801xyz\"]"s, "1:3: The escape sequence is half of a surrogate pair."},
      {"bytes that are no UTF-8", "[\"\xFE\"]"s, taken},
      {"the halves of a surrogate pair the wrong way round", "[\"\\uDd1f\\uD834\"]"s, "1:3: The escape sequence is half of a surrogate pair."},
      {"a letter of Latin-1", "[\"\xE8\"]"s, taken},
      {"the second half of a surrogate pair", "[\"\\uDFAB\"]"s, "1:3: The escape sequence is half of a surrogate pair."},
      {"a continuation byte alone", "[\"\x82\"]"s, taken},
      {"a character beyond Unicode", "[\"\xF4\xBF\xBF\xBE\"]"s, taken},
      {"two bytes for one of ASCII", "[\"\xC0\xAE\"]"s, taken},
      {"six bytes for one character", "[\"\xFC\x83\xBF\xBF\xBF\xBE\"]"s, taken},
      {"six bytes for NUL", "[\"\xFC\x80\x80\x80\x80\x81\"]"s, taken},
      {"a character of three bytes without the last", "[\"\xE0\xFE\"]"s, taken},
      {"UTF-16 with a byte order mark", "\xFF\xFE[\x00\"\x00\xE8\x00\"\x00]\x00"s, "0:0: The file is UTF-16; save it as UTF-8."},
      {"bytes that are no UTF-8 among others", "[\"\xE6\x97\xA5\xD1\x88\xFB\"]"s, taken},
      {"UTF-16, the high byte first", "\x00[\x00\"\x00\xE8\x00\"\x00]"s, "0:0: The file is UTF-16; save it as UTF-8."},
      {"UTF-16, the low byte first", "[\x00\"\x00\xE8\x00\"\x00]\x00"s, "0:0: The file is UTF-16; save it as UTF-8."},
      {"half of a surrogate pair in three bytes", "[\"\xED\xA0\x81\"]"s, taken},
      {"arrays in each other, 500 of them", repeated("[", 500) + repeated("]", 500), taken},
      {"a byte order mark before an object", "\xEF\xBB\xBF{}"s, taken},
  };
}
// clang-format on

TEST(Json_Test_Suite, what_is_json_is_taken) {
  expect_verdicts(texts_that_are_json());
}

TEST(Json_Test_Suite, what_is_none_is_refused_with_its_place) {
  for (const Case& tried : texts_that_are_none()) {
    EXPECT_NE(tried.verdict, taken) << tried.about;
  }
  expect_verdicts(texts_that_are_none());
}

TEST(Json_Test_Suite, what_readers_decide_about_is_decided) {
  expect_verdicts(texts_that_readers_decide_about());
}

}  // namespace
}  // namespace kuv::vemora::embedded_server
