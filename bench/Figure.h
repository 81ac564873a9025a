#pragma once

#include <kesu/foundation/Value.h>

#include <optional>
#include <string>
#include <vector>

namespace kesu::bench {

/// One line of the table: what was measured, what it was measured beside, and whether it is within its budget. The
/// number beside it has the same unit and comes from the same run.
struct Figure {
  std::string what;
  double measured = 0.0;
  std::string unit;
  std::string besideWhat;  ///< Empty without one.
  double beside = 0.0;
  std::string budget;  ///< In words; empty when there is none.
  bool met = true;

  Figure(std::string whatIsMeasured, double number, std::string unitOfBoth)
      : what(std::move(whatIsMeasured)), measured(number), unit(std::move(unitOfBoth)) {}

  Figure& compared(std::string withWhat, double number);
  Figure& atMost(double limit);
  /// Both need compared() first.
  Figure& ratioAtMost(double limit);
  Figure& ratioAtLeast(double limit);

  /// measured / beside; nothing when there is nothing beside it.
  std::optional<double> ratio() const;

  /// The form in which a row's process passes its lines on.
  Dictionary toDictionary() const;
  static std::optional<Figure> fromDictionary(const Dictionary& dictionary);
};

/// Where a row puts its lines: written to standard output as JSON, one per line, as they come.
class Figures {
 public:
  void add(const Figure& figure);
  /// Adds the median of times in seconds and their 99th percentile, in milliseconds.
  void addTimes(const std::string& what, const std::vector<double>& times, double budget);
};

}  // namespace kesu::bench
