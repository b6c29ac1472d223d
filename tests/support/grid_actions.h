#pragma once

#include <QList>

namespace qivo::widgets {
class FlexGrid;
}

namespace qivo::test {

// The row data of every data row, top to bottom.
QList<qint32> rowKeys(const widgets::FlexGrid& grid);
// A user's click (or double-click) on a visible cell.
void clickCell(widgets::FlexGrid& grid, int row, int col);
void doubleClickCell(widgets::FlexGrid& grid, int row, int col);

}  // namespace qivo::test
