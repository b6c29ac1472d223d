#include "support/grid_actions.h"

#include <QTest>

#include "platform/flex_grid.h"

namespace qivo::test {

QList<qint32> rowKeys(const platform::FlexGrid& grid) {
    QList<qint32> keys;
    for (int row = 1; row < grid.Rows(); ++row) {
        keys << grid.RowData(row);
    }
    return keys;
}

void clickCell(platform::FlexGrid& grid, int row, int col) {
    QTest::mouseClick(grid.viewport(), Qt::LeftButton, {}, grid.cellRect(row, col).center());
}

void doubleClickCell(platform::FlexGrid& grid, int row, int col) {
    QTest::mouseDClick(grid.viewport(), Qt::LeftButton, {}, grid.cellRect(row, col).center());
}

}  // namespace qivo::test
