#include "platform/row_cursor.h"

#include <QSqlRecord>

namespace qivo::platform {

QStringList QtRowCursor::columnNames() const {
    const QSqlRecord record = query_->record();
    QStringList names;
    for (int i = 0; i < record.count(); ++i) {
        names << record.fieldName(i);
    }
    return names;
}

}  // namespace qivo::platform
