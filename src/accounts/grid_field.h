#pragma once

#include <QString>
#include <QtGlobal>

namespace qivo {

namespace widgets {
class FlexGrid;
}
namespace database {
class Recordset;
}

// A whole number into a grid cell, as QString::number writes it.
void setNumberCell(widgets::FlexGrid& grid, int row, int col, qint64 number);

// Puts a record's field into a grid cell as the text fieldText gives, taking the engine's own
// bytes where it has them: a long list then converts no text it does not paint.
void setCellFromField(widgets::FlexGrid& grid, int row, int col, const database::Recordset& record,
                      const QString& name);

}  // namespace qivo
