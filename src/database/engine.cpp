#include "database/engine.h"

#include <QSqlError>

#include "database/odbc/odbc_engine.h"
#include "database/row_cursor.h"
#include "database/sqlite/sqlite_engine.h"
#include "runtime/runtime_error.h"

namespace qivo::database {

namespace {

// The keys the program's connection strings carry. Values are not escaped, so a ';' ends a value
// only where one of these keys and its '=' follow: a password "p;w=x" stays whole.
bool startsKnownKey(const QString& text, qsizetype from) {
    static const QStringList keys = {"provider", "password",        "persist security info",
                                     "user id",  "initial catalog", "data source"};
    const QStringView rest = QStringView(text).mid(from).trimmed();
    if (rest.isEmpty()) {
        return true;
    }
    for (const QString& key : keys) {
        if (rest.startsWith(key, Qt::CaseInsensitive) &&
            rest.mid(key.size()).trimmed().startsWith(u'=')) {
            return true;
        }
    }
    return false;
}

}  // namespace

QMap<QString, QString> parseConnectionString(const QString& connectionString) {
    QMap<QString, QString> parts;
    qsizetype start = 0;
    while (start < connectionString.size()) {
        qsizetype end = connectionString.indexOf(u';', start);
        while (end >= 0 && !startsKnownKey(connectionString, end + 1)) {
            end = connectionString.indexOf(u';', end + 1);
        }
        if (end < 0) {
            end = connectionString.size();
        }
        const QString item = connectionString.mid(start, end - start);
        start = end + 1;
        const qsizetype eq = item.indexOf(u'=');
        if (eq < 0) {
            continue;
        }
        const QString key = item.left(eq).trimmed().toLower();
        QString value = item.mid(eq + 1);
        // Only the catalog and the data source are written in quotes; a password may be "'x'".
        const bool quoted = key == u"initial catalog" || key == u"data source";
        if (quoted && value.size() >= 2 && value.startsWith(u'\'') && value.endsWith(u'\'')) {
            value = value.mid(1, value.size() - 2);
        }
        parts.insert(key, value);
    }
    return parts;
}

bool isEmbedded(const QString& dataSource) {
    return dataSource.startsWith(QLatin1String("sqlite:"));
}

std::unique_ptr<Engine> engineFor(const QString& dataSource) {
    if (isEmbedded(dataSource)) {
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

std::unique_ptr<RowCursor> Engine::query(QSqlDatabase& db, const QString& sql) const {
    std::unique_ptr<RowCursor> rows;
    run([&] { rows = select(db, sql); });
    return rows;
}

bool Engine::inTransaction(QSqlDatabase& db, const std::function<bool()>& work) const {
    if (transactionOpen(db)) {
        return work();
    }
    if (!db.transaction()) {
        throwSqlError(db.lastError());
    }
    bool keep = false;
    try {
        keep = work();
        if (keep) {
            commitStarting();
            if (!db.commit()) {
                throwSqlError(db.lastError());
            }
        }
    } catch (...) {
        db.rollback();
        throw;
    }
    if (!keep) {
        db.rollback();
    }
    return keep;
}

qint64 Engine::execute(QSqlDatabase& db, const QStringList& statements, bool eachMustChange) const {
    qint64 changed = 0;
    const bool kept = inTransaction(db, [&] {
        for (const QString& statement : statements) {
            const qint64 rows = executeStatement(db, statement);
            if (eachMustChange && rows == 0) {
                return false;
            }
            changed += rows;
        }
        return true;
    });
    return kept ? changed : 0;
}

void throwSqlError(const QSqlError& error) {
    const QString description =
        error.databaseText().isEmpty() ? error.driverText() : error.databaseText();
    if (description == dateConversionMessage()) {
        throw runtime::RuntimeError(-2147217913, description);
    }
    if (description == truncationMessage()) {
        throw runtime::RuntimeError(kTruncationError, description);
    }
    throw runtime::RuntimeError(runtime::err::ProviderError, description);
}

}  // namespace qivo::database
