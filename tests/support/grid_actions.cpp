#include "support/grid_actions.h"

#include <QTest>

#include "widgets/flex_grid.h"

namespace qivo::test {

QList<qint32> rowKeys(const widgets::FlexGrid& grid) {
    QList<qint32> keys;
    for (int row = 1; row < grid.Rows(); ++row) {
        keys << grid.RowData(row);
    }
    return keys;
}

void clickCell(widgets::FlexGrid& grid, int row, int col) {
    QTest::mouseClick(grid.viewport(), Qt::LeftButton, {}, grid.cellRect(row, col).center());
}

void doubleClickCell(widgets::FlexGrid& grid, int row, int col) {
    QTest::mouseDClick(grid.viewport(), Qt::LeftButton, {}, grid.cellRect(row, col).center());
}

}  // namespace qivo::test
