// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/operations/match/event_reader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <unistd.h>

#include <fstream>
#include <string>
#include <vector>

namespace kuv::vemora::operations {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::string text_of(const Event& event) {
  const std::string place = " of " + std::to_string(event.place);
  switch (event.kind) {
    case Event::Kind::topic:
      return "topic " + event.text + place;
    case Event::Kind::object:
      return "object " + event.text + (event.in_motion ? " in motion" : "") + place;
    case Event::Kind::motion:
      return "motion" + event.text + place;
    case Event::Kind::subscription:
      return "subscription" + event.text + place;
  }
  return "unknown";
}

/// A file of its own for each test.
class Event_Reader_Test : public testing::Test {
 protected:
  Event_Reader_Test() {
    std::string folder = testing::TempDir() + "events-XXXXXX";
    EXPECT_NE(mkdtemp(folder.data()), nullptr);
    folder_ = folder;
  }
  ~Event_Reader_Test() override {
    unlink(path().c_str());
    rmdir(folder_.c_str());
  }

  std::string path() const { return folder_ + "/events"; }
  const std::string& folder() const { return folder_; }

  void given(const std::string& text) const { std::ofstream(path(), std::ios::binary) << text; }

  std::vector<std::string> events() const {
    std::vector<std::string> texts;
    Event_Reader reader(path());
    while (const std::optional<Event> event = reader.next()) {
      texts.push_back(text_of(*event));
    }
    return texts;
  }

  /// "line:column: message | the text of the line"
  std::string complaint() const {
    try {
      events();
    } catch (const Event_Error& error) {
      return std::to_string(error.location.line) + ":" + std::to_string(error.location.column) +
             ": " + error.what() + " | " + error.line;
    }
    return "";
  }

 private:
  std::string folder_;
};

constexpr const char* an_event = R"({"camera": 10, "motion": true})";

TEST_F(Event_Reader_Test, reads_each_kind_of_event) {
  given(R"({"camera": 10, "topic": "tns1:VideoSource/MotionAlarm"}
{"camera": 11, "object": "person", "inMotion": true}
{"camera": 11, "object": "person", "inMotion": false}
{"camera": 11, "object": "car"}
{"camera": 18446744073709551615, "motion": true}
{"subscription": 3}
)");

  EXPECT_THAT(events(), ElementsAre("topic tns1:VideoSource/MotionAlarm of 10",
                                    "object person in motion of 11", "object person of 11",
                                    "object car of 11", "motion of 18446744073709551615",
                                    "subscription of 3"));
}

TEST_F(Event_Reader_Test, takes_keys_in_any_order_blank_lines_and_a_last_line_without_end) {
  given("\n \t\r\n{ \"topic\" : \"\\u0061\",\"camera\":1e1 }\r\n\n\n" + std::string(an_event));

  EXPECT_THAT(events(), ElementsAre("topic a of 10", "motion of 10"));
}

TEST_F(Event_Reader_Test, finds_no_events_where_there_are_none) {
  given("");
  EXPECT_THAT(events(), IsEmpty());
  given("\n  \n\t");
  EXPECT_THAT(events(), IsEmpty());
}

TEST_F(Event_Reader_Test, reads_lines_that_do_not_end_with_what_is_read_at_once) {
  std::string text;
  std::vector<std::string> expected;
  for (int number = 0; number < 10'000; ++number) {
    const std::string topic = std::string(number % 97, 'x') + std::to_string(number);
    text += R"({"camera": 10, "topic": ")" + topic + "\"}\n";
    expected.push_back("topic " + topic + " of 10");
  }
  ASSERT_GT(text.size(), std::size_t{8} << 16);
  given(text);

  EXPECT_EQ(events(), expected);
}

TEST_F(Event_Reader_Test, counts_blank_lines_and_tells_a_fault_as_often_as_it_is_met) {
  given(std::string(an_event) + "\n\n \n[]\n" + an_event + "\n");

  EXPECT_EQ(complaint(), "4:1: An event must be a JSON object. | []");
}

TEST_F(Event_Reader_Test, refuses_a_line_that_is_longer_than_any_event) {
  const std::size_t longest = std::size_t{1} << 20;
  const std::string blanks(longest - std::string(an_event).size(), ' ');
  given("\n" + blanks + an_event + "\n");
  EXPECT_THAT(events(), ElementsAre("motion of 10"));

  given("\n " + blanks + an_event + "\n");
  EXPECT_EQ(complaint(), "2:1: The line is longer than 1048576 bytes. | ");
}

TEST_F(Event_Reader_Test, tells_what_cannot_be_opened_or_read) {
  EXPECT_EQ(complaint(), "0:0: cannot open " + path() + ": No such file or directory | ");

  try {
    Event_Reader(folder()).next();
    ADD_FAILURE() << "a folder was read";
  } catch (const Event_Error& error) {
    EXPECT_EQ(error.what(), "cannot read " + folder() + ": Is a directory");
  }
}

struct Faulty_Line {
  std::string line;
  std::size_t column;
  std::string message;
};

std::ostream& operator<<(std::ostream& stream, const Faulty_Line& faulty) {
  return stream << faulty.line;
}

class Faulty_Events : public Event_Reader_Test, public testing::WithParamInterface<Faulty_Line> {};

constexpr const char* no_id = "must be an unsigned 64-bit integer.";
constexpr const char* empty_text = "must be a string that is not empty.";

INSTANTIATE_TEST_SUITE_P(
    Lines, Faulty_Events,
    testing::Values(
        // no JSON
        Faulty_Line{"{", 2, "The document ends too early."},
        Faulty_Line{R"({"camera": 10,})", 15, "Expected a key in double quotes."},
        Faulty_Line{R"({"camera": 10, "motion": true} {})", 32,
                    "Unexpected text after the end of the document."},
        Faulty_Line{R"({"camera": 010, "motion": true})", 12,
                    "A number must not have leading zeros."},
        Faulty_Line{R"({"camera": 10, /* */ "motion": true})", 16,
                    "Comments are not allowed in JSON."},
        Faulty_Line{"7", 1, "A document must be an object or an array."},
        Faulty_Line{R"({"camera": 10, "camera": 11, "motion": true})", 16,
                    "Duplicate key: 'camera'"},
        Faulty_Line{R"({"camera": [1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16]})", 46,
                    "The document has more than 16 values."},
        // no event
        Faulty_Line{"[]", 1, "An event must be a JSON object."},
        Faulty_Line{"{}", 1, "The event has no \"camera\"."},
        Faulty_Line{R"( {"topic": "a"})", 2, "The event has no \"camera\"."},
        Faulty_Line{R"({"camera": 10})", 1,
                    R"(The event has none of "topic", "object" and "motion".)"},
        Faulty_Line{R"({"camera": 10, "inMotion": true})", 1,
                    R"(The event has none of "topic", "object" and "motion".)"},
        // values
        Faulty_Line{R"({"camera": "10", "motion": true})", 12, R"("camera" )" + std::string(no_id)},
        Faulty_Line{R"({"camera": -1, "motion": true})", 12, R"("camera" )" + std::string(no_id)},
        Faulty_Line{R"({"camera": 1.5, "motion": true})", 12, R"("camera" )" + std::string(no_id)},
        Faulty_Line{R"({"camera": 18446744073709551616, "motion": true})", 12,
                    R"("camera" )" + std::string(no_id)},
        Faulty_Line{R"({"subscription": null})", 18, R"("subscription" )" + std::string(no_id)},
        Faulty_Line{R"({"camera": 10, "topic": ""})", 25, R"("topic" )" + std::string(empty_text)},
        Faulty_Line{R"({"camera": 10, "topic": 7})", 25, R"("topic" )" + std::string(empty_text)},
        Faulty_Line{R"({"camera": 10, "object": 3})", 26, R"("object" )" + std::string(empty_text)},
        Faulty_Line{R"({"camera": 10, "object": ""})", 26,
                    R"("object" )" + std::string(empty_text)},
        Faulty_Line{R"({"camera": 10, "object": "ä", "inMotion": 1})", 43,
                    "\"inMotion\" must be true or false."},
        Faulty_Line{R"({"camera": 10, "motion": "yes"})", 26, "\"motion\" must be true or false."},
        Faulty_Line{R"({"camera": 10, "motion": false})", 26,
                    "\"motion\" must be true: what does not happen is no event."},
        // keys
        Faulty_Line{R"({"subscription": 3, "camera": 10})", 31,
                    R"(An event of this kind has no key "camera".)"},
        Faulty_Line{R"({"camera": 10, "topic": "a", "object": "b"})", 40,
                    R"(An event of this kind has no key "object".)"},
        Faulty_Line{R"({"camera": 10, "object": "a", "motion": true})", 41,
                    R"(An event of this kind has no key "motion".)"},
        Faulty_Line{R"({"camera": 10, "object": "a", "inMotoin": true})", 43,
                    R"(An event of this kind has no key "inMotoin".)"},
        Faulty_Line{R"({"camera": 10, "motion": true, "inMotion": true})", 44,
                    R"(An event of this kind has no key "inMotion".)"}));

TEST_P(Faulty_Events, are_told_with_their_place_and_their_text) {
  given(std::string(an_event) + "\n\n" + GetParam().line + "\r\n" + an_event + "\n");

  EXPECT_EQ(complaint(), "3:" + std::to_string(GetParam().column) + ": " + GetParam().message +
                             " | " + GetParam().line);
}

}  // namespace
}  // namespace kuv::vemora::operations
