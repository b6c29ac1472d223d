#pragma once

#include <QList>
#include <QStringList>
#include <span>

namespace qivo::widgets {
class FlexGrid;
class TextBox;
}  // namespace qivo::widgets

namespace qivo::test {

// The row data of every data row, top to bottom.
QList<qint32> rowKeys(const widgets::FlexGrid& grid);
// The text of every cell of one row, left to right.
QStringList gridLine(const widgets::FlexGrid& grid, int row);
// The text of each box of a control array, by index.
QStringList texts(std::span<widgets::TextBox* const> boxes);
// A user's click (or double-click) on a visible cell.
void clickCell(widgets::FlexGrid& grid, int row, int col);
void doubleClickCell(widgets::FlexGrid& grid, int row, int col);
// The current row when it is drawn selected across the list and lies in view; 0 otherwise.
int shownCurrentRow(const widgets::FlexGrid& grid);

}  // namespace qivo::test
