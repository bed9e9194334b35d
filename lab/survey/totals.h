#pragma once

#include <array>
#include <cstddef>
#include <functional>
#include <map>
#include <string>

#include "lab/survey/row.h"

namespace fernwick::lab {

/// The totals of a survey.
struct SurveyTotals {
  std::array<std::size_t, 5> outcomes = {};  // by Outcome
  ClassCounts classes = {};                  // by ComputerClass
  std::size_t matches = 0;
  std::size_t missingImages = 0;  // of matches whose image the payload lacks

  /// The number of each diagnostic. Once there are MaxDiagnostics, further ones are only counted in
  /// otherDiagnostics, so that memory does not grow with the number of computers.
  std::map<std::string, std::size_t, std::less<>> diagnostics = {};
  std::size_t otherDiagnostics = 0;

  static constexpr std::size_t MaxDiagnostics = 1000;

  /// The classes of the computers of each board, "-" for those without an identifier. Once there
  /// are MaxBoards, those of further ones are counted together. Refused recordings have no board.
  std::map<std::string, ClassCounts, std::less<>> boards = {};
  ClassCounts otherBoards = {};

  static constexpr std::size_t MaxBoards = 1000;

  /// How many computers are blocked by a requirement of each key.
  std::map<std::string, std::size_t, std::less<>> blockingKeys = {};

  /// REQUIRES: the row has a class.
  void Add(const SurveyRow& row);
  std::size_t Computers() const;
  std::size_t Count(Outcome outcome) const { return outcomes[static_cast<std::size_t>(outcome)]; }
  std::size_t Count(ComputerClass computerClass) const {
    return classes[static_cast<std::size_t>(computerClass)];
  }

 private:
  void CountClass(const SurveyRow& row);
};

/// A line of the computers, one of their classes, one of each board in the order of their bytes,
/// one of each key that blocks and one of each diagnostic, the most frequent first, every text safe
/// to show.
std::string Describe(const SurveyTotals& totals);

}  // namespace fernwick::lab
