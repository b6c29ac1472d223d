#include "support/grid_actions.h"

#include <QItemSelectionModel>
#include <QTest>

#include "widgets/flex_grid.h"
#include "widgets/text_box.h"

namespace qivo::test {

QList<qint32> rowKeys(const widgets::FlexGrid& grid) {
    QList<qint32> keys;
    for (int row = 1; row < grid.Rows(); ++row) {
        keys << grid.RowData(row);
    }
    return keys;
}

QStringList gridLine(const widgets::FlexGrid& grid, int row) {
    QStringList cells;
    for (int col = 0; col < grid.Cols(); ++col) {
        cells << grid.TextMatrix(row, col);
    }
    return cells;
}

QStringList texts(std::span<widgets::TextBox* const> boxes) {
    QStringList result;
    for (const widgets::TextBox* box : boxes) {
        result << box->text();
    }
    return result;
}

void clickCell(widgets::FlexGrid& grid, int row, int col) {
    QTest::mouseClick(grid.viewport(), Qt::LeftButton, {}, grid.cellRect(row, col).center());
}

void doubleClickCell(widgets::FlexGrid& grid, int row, int col) {
    QTest::mouseDClick(grid.viewport(), Qt::LeftButton, {}, grid.cellRect(row, col).center());
}

int shownCurrentRow(const widgets::FlexGrid& grid) {
    const int row = grid.Row();
    const QModelIndex first = grid.model()->index(row - 1, grid.columnAt(0));
    const bool drawn = row > 0 && grid.selectionModel()->isRowSelected(row - 1, {}) &&
                       grid.currentIndex().row() == row - 1;
    return drawn && grid.viewport()->rect().contains(grid.visualRect(first).center()) ? row : 0;
}

}  // namespace qivo::test
