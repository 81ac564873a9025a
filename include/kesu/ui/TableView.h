#pragma once

#include <kesu/Export.h>
#include <kesu/ui/View.h>

#include <cstddef>
#include <vector>

namespace kesu {

/// Provides the rows of a table. Must outlive the table or be detached first (setDataSource, forgetDataSource), which
/// it may do in its own functions. Main thread.
class KESU_API TableViewDataSource {
 public:
  virtual ~TableViewDataSource() = default;
  /// Rows beyond the first 10,000 are left out.
  virtual std::size_t numberOfRows() = 0;
  virtual double heightOfRow(std::size_t row) = 0;  ///< In points.
  /// Returns the view of a row, which the table places; `width` is the table's. Null leaves the row empty.
  virtual ViewPtr cellForRow(std::size_t row, double width) = 0;
};

/// Rows one below the other, scrolled with the remote while the table is focused. Where rows are cut off they fade into
/// an opaque background, and a slim bar shows the position. Main thread.
class KESU_API TableView : public View {
 public:
  explicit TableView(const Rect& frame);

  /// Replaces the source and loads its rows. Not owned; null for an empty table.
  void setDataSource(TableViewDataSource* source);
  /// Detaches the source and keeps its rows, for a table that is still on its way off the screen.
  void forgetDataSource() { source_ = nullptr; }
  /// Loads all rows again. Keeps the scroll offset as far as there are rows.
  void reloadData();
  double contentHeight() const { return contentHeight_; }
  double scrollOffset() const { return offset_; }
  /// Scrolls to `offset` points from the top, clamped to the end.
  void setScrollOffset(double offset, bool animated);
  /// Scrolls a row to the top, as far as there is enough below it.
  void scrollToRow(std::size_t row, bool animated);

  /// Returns whether there is more than fits.
  bool canBecomeFocused() const override;
  /// Scrolls by about two lines of text on Up and Down; returns false at the end.
  bool handleArrow(RemoteButton arrow) override;
  void didUpdateFocus() override;

 protected:
  void sizeDidChange() override;

 private:
  double largestOffset() const;
  void addRow(const ViewPtr& cell, double height);
  void scroll(double offset);
  void placeIndicator();

  TableViewDataSource* source_ = nullptr;
  std::vector<double> rowTops_;
  ViewPtr content_;
  ViewPtr topFade_;
  ViewPtr bottomFade_;
  ViewPtr indicator_;
  double contentHeight_ = 0.0;
  double offset_ = 0.0;
};

}  // namespace kesu
