#pragma once

#include <QList>

namespace qivo::platform {
class FlexGrid;
}

namespace qivo::test {

// The row data of every data row, top to bottom.
QList<qint32> rowKeys(const platform::FlexGrid& grid);
// A user's click (or double-click) on a visible cell.
void clickCell(platform::FlexGrid& grid, int row, int col);
void doubleClickCell(platform::FlexGrid& grid, int row, int col);

}  // namespace qivo::test
