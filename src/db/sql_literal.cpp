#include "db/sql_literal.h"

namespace qivo::db {

QString sqlText(const QString& value) {
    return QString(value).replace(u'\'', QStringLiteral("''"));
}

}  // namespace qivo::db
