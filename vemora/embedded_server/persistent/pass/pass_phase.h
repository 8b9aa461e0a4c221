// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <array>
#include <cstddef>

namespace kuv::vemora::embedded_server {

/// What became, up to now, of what a pass has done. Begins with `working`.
enum class Pass_Phase {
  working,    ///< what was done since the last commit is in the transaction
  committed,  ///< nothing was done since the last commit
  // A fault sticks in all that follow.
  faulty,    ///< what was done before the fault is in the transaction yet
  over,      ///< nothing was done since the last commit
  lost,      ///< what was done since the last commit was rolled back
  in_doubt,  ///< nobody can know whether the last commit was carried out
};

enum class Pass_Event {
  write,   ///< an operation that writes begins
  commit,  ///< was carried out
  fault,   ///< which leaves the transaction as it is
  loss,    ///< a fault, and the transaction is rolled back
  doubt,   ///< a fault in a commit that may have been carried out all the same
};

/// All transitions: a row for each phase, a column for each event.
constexpr Pass_Phase next(Pass_Phase phase, Pass_Event event) noexcept {
  using P = Pass_Phase;
  // clang-format off
  constexpr std::array<std::array<P, 5>, 6> transitions{{
      //  write        commit        fault         loss         doubt
      {{P::working,  P::committed, P::faulty,    P::lost,     P::in_doubt}},  // working
      {{P::working,  P::committed, P::over,      P::over,     P::over}},      // committed
      {{P::faulty,   P::over,      P::faulty,    P::lost,     P::in_doubt}},  // faulty
      {{P::over,     P::over,      P::over,      P::over,     P::over}},      // over
      {{P::lost,     P::lost,      P::lost,      P::lost,     P::lost}},      // lost
      {{P::in_doubt, P::in_doubt,  P::in_doubt,  P::in_doubt, P::in_doubt}},  // in_doubt
  }};
  // clang-format on
  return transitions[static_cast<std::size_t>(phase)][static_cast<std::size_t>(event)];
}

}  // namespace kuv::vemora::embedded_server
