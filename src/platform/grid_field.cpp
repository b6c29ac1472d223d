#include "platform/grid_field.h"

#include "platform/ado.h"
#include "platform/flex_grid.h"

namespace qivo::platform {

void setCellFromField(FlexGrid& grid, int row, int col, const Recordset& record,
                      const QString& name) {
    if (const std::optional<QByteArrayView> bytes = record.fieldUtf8(name)) {
        grid.setTextMatrixUtf8(row, col, QUtf8StringView(bytes->data(), bytes->size()));
    } else {
        grid.setTextMatrix(row, col, fieldText(record.Fields(name)));
    }
}

}  // namespace qivo::platform
