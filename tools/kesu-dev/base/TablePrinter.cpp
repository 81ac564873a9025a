#include "tools/kesu-dev/base/TablePrinter.h"

#include <algorithm>
#include <utility>

#include "tools/kesu-dev/base/Text.h"

namespace kesu::dev {
namespace {

constexpr std::size_t kWidestCell = 40;     // Of all columns but the last.
constexpr std::size_t kNarrowestLast = 24;  // Words still fit, if the table becomes wider than asked.
constexpr std::string_view kGap = "  ";

void wrapLine(std::string_view line, std::size_t columns, std::vector<std::string>& out) {
  while (displayWidth(line) > columns) {
    const std::size_t limit = bytesOfColumns(line, columns);
    const std::size_t blank = line.rfind(' ', limit);
    const bool atBlank = blank != std::string_view::npos && blank > 0;
    out.emplace_back(line.substr(0, atBlank ? blank : limit));
    line.remove_prefix(atBlank ? blank : limit);
    line.remove_prefix(std::min(line.find_first_not_of(' '), line.size()));
  }
  out.emplace_back(line);
}

}  // namespace

TablePrinter::TablePrinter(std::vector<std::string> headings, std::size_t width) : width_(width) {
  rows_.push_back(std::move(headings));
}

void TablePrinter::addRow(std::vector<std::string> cells) {
  for (std::size_t column = 0; column + 1 < cells.size(); ++column) {
    cells[column] = shortened(cells[column], kWidestCell);
  }
  rows_.push_back(std::move(cells));
}

std::vector<std::size_t> TablePrinter::columnWidths() const {
  std::vector<std::size_t> widths(rows_.front().size(), 0);
  for (const auto& row : rows_) {
    for (std::size_t column = 0; column + 1 < widths.size(); ++column) {
      widths[column] = std::max(widths[column], displayWidth(row[column]));
    }
  }
  std::size_t used = 0;
  for (const std::size_t width : widths) {
    used += width == 0 ? 0 : width + kGap.size();
  }
  widths.back() = std::max(width_ > used ? width_ - used : 0, kNarrowestLast);
  return widths;
}

std::string TablePrinter::text() const {
  const std::vector<std::size_t> widths = columnWidths();
  std::string out;
  for (const auto& row : rows_) {
    std::string head;
    for (std::size_t column = 0; column + 1 < widths.size(); ++column) {
      head += padded(row[column], widths[column]) + std::string(kGap);
    }
    const std::string indent(displayWidth(head), ' ');
    for (const std::string& line : wrapped(row.back(), widths.back())) {
      out += trimmedRight((head.empty() ? indent : std::exchange(head, std::string())) + line) + '\n';
    }
    if (&row == &rows_.front()) {
      out += std::string(std::min(width_, indent.size() + widths.back()), '-') + '\n';
    }
  }
  return out;
}

std::vector<std::string> wrapped(std::string_view text, std::size_t columns) {
  std::vector<std::string> lines;
  for (std::size_t end = text.find('\n'); end != std::string_view::npos; end = text.find('\n')) {
    wrapLine(text.substr(0, end), columns, lines);
    text.remove_prefix(end + 1);
  }
  wrapLine(text, columns, lines);
  return lines;
}

}  // namespace kesu::dev
