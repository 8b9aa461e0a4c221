// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only

// Parses 20,000 mutants of valid documents and checks what becomes of them.
//
//   vemora_mutant_run [SEED]         all mutants of a seed; fails when a check does
//   vemora_mutant_run SEED NUMBER    one of them: its documents and what becomes of them
//
// Without SEED that of the environment variable VEMORA_MUTANT_SEED is taken, or the usual one.

#include <boost/log/core.hpp>
#include <cstdlib>
#include <iostream>
#include <string>
#include <vector>

#include "fuzz/mutants.h"
#include "support/message_register.h"

namespace kuv::fuzz {
namespace {

constexpr std::uint64_t usual_seed = 20240229;
constexpr int mutant_count = 20'000;
constexpr int least_accepted = mutant_count * 40 / 100;
constexpr int most_accepted = mutant_count * 60 / 100;
constexpr int least_times_met = 20;

const char* name_of(Judge judge) {
  switch (judge) {
    case Judge::nobody:
      return "accepted";
    case Judge::json_library:
      return "rejected by the JSON library";
    case Judge::parser:
      return "rejected by the parser";
    case Judge::tag_converter:
      return "rejected by the tag converter";
    case Judge::unknown:
      break;
  }
  return "rejected by nobody who may";
}

class Mutant_Run {
 public:
  explicit Mutant_Run(std::uint64_t seed) : seed_(seed) {}

  /// Whether everything was as it should be.
  bool run() {
    for (int number = 0; number < mutant_count; ++number) {
      judge(number);
    }
    print();
    check_totals();
    return failures_ == 0;
  }

 private:
  void judge(int number) {
    const Mutant mutant = make_mutant(seed_, number);
    const Verdict verdict = parse_documents(mutant.documents);
    valid_ += mutant.is_valid ? 1 : 0;
    ++judged_[static_cast<int>(verdict.judge)];
    if (verdict.judge == Judge::parser) {
      messages_.note(verdict.text);
    } else if (verdict.judge == Judge::unknown) {
      fail(number, "rejected with an unknown text: " + verdict.text);
    }
    if (mutant.is_valid && verdict.judge != Judge::nobody) {
      fail(number, "valid, but rejected with: " + verdict.text);
    }
    for (const std::string& promise : verdict.broken_promises) {
      fail(number, "accepted, but not so: " + promise);
    }
  }

  void check_totals() {
    const int accepted = judged_[static_cast<int>(Judge::nobody)];
    if (accepted < least_accepted || accepted > most_accepted) {
      fail("not about half of the mutants are accepted");
    }
    for (const std::string& message : messages_.met_less_than(least_times_met)) {
      fail("met less than " + std::to_string(least_times_met) + " times: " + message);
    }
  }

  void print() const {
    std::cout << "seed " << seed_ << ", " << mutant_count << " mutants, " << valid_
              << " of them valid\n";
    for (const Judge judge : {Judge::nobody, Judge::parser, Judge::tag_converter,
                              Judge::json_library, Judge::unknown}) {
      std::cout << judged_[static_cast<int>(judge)] << '\t' << name_of(judge) << '\n';
    }
    std::cout << "of the parser's:\n";
    for (const auto& [message, count] : messages_.counts()) {
      std::cout << count << '\t' << message << '\n';
    }
  }

  void fail(int number, const std::string& what) {
    fail(what + "\n  repeat with: vemora_mutant_run " + std::to_string(seed_) + ' ' +
         std::to_string(number));
  }

  void fail(const std::string& what) {
    ++failures_;
    std::cout << "FAILED: " << what << '\n';
  }

  std::uint64_t seed_;
  int valid_ = 0;
  int judged_[5] = {};
  test::Message_Tally messages_;
  int failures_ = 0;
};

int show(std::uint64_t seed, std::uint64_t number) {
  const Mutant mutant = make_mutant(seed, number);
  const Documents& documents = mutant.documents;
  const Verdict verdict = parse_documents(documents);
  std::cout << documents.configuration << "\n---\n"
            << documents.mapping << "\n\n"
            << (mutant.is_valid ? "valid; " : "") << "server "
            << (documents.server_is_known ? "known" : "unknown") << "; " << name_of(verdict.judge)
            << ' ' << verdict.text << '\n';
  for (const std::string& promise : verdict.broken_promises) {
    std::cout << "but not so: " << promise << '\n';
  }
  return verdict.judge == Judge::unknown || !verdict.broken_promises.empty() ? 1 : 0;
}

int run(const std::vector<std::string>& arguments) {
  const char* const wanted = std::getenv("VEMORA_MUTANT_SEED");
  std::uint64_t seed = wanted != nullptr ? std::stoull(wanted) : usual_seed;
  if (!arguments.empty()) {
    seed = std::stoull(arguments[0]);
  }
  if (arguments.size() > 1) {
    return show(seed, std::stoull(arguments[1]));
  }
  return Mutant_Run(seed).run() ? 0 : 1;
}

}  // namespace
}  // namespace kuv::fuzz

int main(int count, char** arguments) {
  boost::log::core::get()->set_logging_enabled(false);
  return kuv::fuzz::run({arguments + 1, arguments + count});
}
