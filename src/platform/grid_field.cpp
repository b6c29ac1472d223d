#include "platform/grid_field.h"

#include <charconv>
#include <iterator>

#include "platform/ado.h"
#include "platform/flex_grid.h"

namespace qivo::platform {

void setNumberCell(FlexGrid& grid, int row, int col, qint64 number) {
    char digits[24];
    const std::to_chars_result end = std::to_chars(std::begin(digits), std::end(digits), number);
    grid.setTextMatrixUtf8(row, col, QUtf8StringView(digits, end.ptr - digits));
}

void setCellFromField(FlexGrid& grid, int row, int col, const Recordset& record,
                      const QString& name) {
    if (const std::optional<QByteArrayView> bytes = record.fieldUtf8(name)) {
        grid.setTextMatrixUtf8(row, col, QUtf8StringView(bytes->data(), bytes->size()));
        return;
    }
    const QVariant value = record.Fields(name);
    if (value.typeId() == QMetaType::LongLong || value.typeId() == QMetaType::Int) {
        setNumberCell(grid, row, col, value.toLongLong());
    } else {
        grid.setTextMatrix(row, col, fieldText(value));
    }
}

}  // namespace qivo::platform
