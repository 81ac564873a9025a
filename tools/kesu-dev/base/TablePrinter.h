#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace kesu::dev {

/// Lays texts out in columns. The last column gets the rest of the width and wraps; the others are as wide as their
/// longest cell. Cells must be printable(); only the last may contain line breaks.
class TablePrinter {
 public:
  TablePrinter(std::vector<std::string> headings, std::size_t width);

  /// Adds a row; it needs one cell per heading.
  void addRow(std::vector<std::string> cells);

  /// Returns the table with its headings and a rule below them. Each line ends with a line break.
  std::string text() const;

 private:
  std::vector<std::size_t> columnWidths() const;

  std::vector<std::vector<std::string>> rows_;
  const std::size_t width_;
};

/// Cuts a text into lines of at most `columns` code points, at blanks where possible.
std::vector<std::string> wrapped(std::string_view text, std::size_t columns);

}  // namespace kesu::dev
