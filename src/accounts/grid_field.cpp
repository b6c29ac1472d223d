#include "accounts/grid_field.h"

#include <charconv>
#include <iterator>

#include "database/ado.h"
#include "widgets/flex_grid.h"

namespace qivo {

void setNumberCell(widgets::FlexGrid& grid, int row, int col, qint64 number) {
    char digits[24];
    const std::to_chars_result end = std::to_chars(std::begin(digits), std::end(digits), number);
    grid.setTextMatrixUtf8(row, col, QUtf8StringView(digits, end.ptr - digits));
}

void setCellFromField(widgets::FlexGrid& grid, int row, int col, const database::Recordset& record,
                      const QString& name) {
    if (const std::optional<QByteArrayView> bytes = record.fieldUtf8(name)) {
        grid.setTextMatrixUtf8(row, col, QUtf8StringView(bytes->data(), bytes->size()));
        return;
    }
    const QVariant value = record.Fields(name);
    if (value.typeId() == QMetaType::LongLong || value.typeId() == QMetaType::Int) {
        setNumberCell(grid, row, col, value.toLongLong());
    } else {
        grid.setTextMatrix(row, col, database::fieldText(value));
    }
}

}  // namespace qivo
