#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace kesu::dev {

/// Lays texts out in columns. The last column takes what is left of the width and wraps; the others are as wide as
/// their longest cell. Cells must be printable() already; only the last may hold line breaks.
class TablePrinter {
 public:
  TablePrinter(std::vector<std::string> headings, std::size_t width);

  /// A row with as many cells as there are headings.
  void addRow(std::vector<std::string> cells);

  /// The table with its heading and a rule below it, each line ended.
  std::string text() const;

 private:
  std::vector<std::size_t> columnWidths() const;

  std::vector<std::vector<std::string>> rows_;
  const std::size_t width_;
};

/// Cuts a text into lines of at most `columns` code points, at blanks where there are some.
std::vector<std::string> wrapped(std::string_view text, std::size_t columns);

}  // namespace kesu::dev
