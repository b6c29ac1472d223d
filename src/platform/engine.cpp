#include "platform/engine.h"

#include <QSqlError>

#include "platform/odbc_engine.h"
#include "platform/runtime_error.h"
#include "platform/sqlite_engine.h"

namespace qivo::platform {

QMap<QString, QString> parseConnectionString(const QString& connectionString) {
    QMap<QString, QString> parts;
    for (const QString& item : connectionString.split(u';', Qt::SkipEmptyParts)) {
        const qsizetype eq = item.indexOf(u'=');
        if (eq < 0) {
            continue;
        }
        QString value = item.mid(eq + 1);
        if (value.size() >= 2 && value.startsWith(u'\'') && value.endsWith(u'\'')) {
            value = value.mid(1, value.size() - 2);
        }
        parts.insert(item.left(eq).trimmed().toLower(), value);
    }
    return parts;
}

std::unique_ptr<Engine> engineFor(const QString& dataSource) {
    if (dataSource.startsWith(QLatin1String("sqlite:"))) {
        return std::make_unique<SqliteEngine>(dataSource.mid(7));
    }
    return std::make_unique<OdbcEngine>();
}

QString Engine::updateStatement(const QString& table, const QStringList& columns,
                                const QString& keyColumn) const {
    QStringList assignments;
    for (const QString& column : columns) {
        assignments << quoteName(column) + QStringLiteral(" = ?");
    }
    return QStringLiteral("update %1 set %2 where %3 = ?")
        .arg(quoteName(table), assignments.join(QStringLiteral(", ")), quoteName(keyColumn));
}

void throwSqlError(const QSqlError& error) {
    const QString description =
        error.databaseText().isEmpty() ? error.driverText() : error.databaseText();
    if (description == dateConversionMessage()) {
        throw RuntimeError(-2147217913, description);
    }
    throw RuntimeError(err::ProviderError, description);
}

}  // namespace qivo::platform
