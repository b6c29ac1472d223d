#include "platform/odbc_engine.h"

#include <QSqlError>
#include <QSqlQuery>

#include "platform/odbc_connection_string.h"
#include "platform/runtime_error.h"
#include "platform/sql_text.h"

namespace qivo::platform {

QSqlDatabase OdbcEngine::open(const QString& name, const QMap<QString, QString>& parts,
                              int loginTimeout) const {
    QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QODBC"), name);
    if (!db.isValid()) {
        throw RuntimeError(err::ProviderError, QStringLiteral("未安装 ODBC 数据库驱动。"));
    }
    db.setDatabaseName(odbcConnectionString(parts, odbcDriverName()));
    db.setConnectOptions(QStringLiteral("SQL_ATTR_LOGIN_TIMEOUT=%1").arg(loginTimeout));
    if (!db.open()) {
        throwSqlError(db.lastError());
    }
    return db;
}

QStringList OdbcEngine::statements(const QString& sql) const {
    return splitStatements(sql);
}

QString OdbcEngine::identityColumn(QSqlDatabase& db, const QString& table) const {
    QSqlQuery query(db);
    query.prepare(
        QStringLiteral("select name from sys.identity_columns where object_id = object_id(?)"));
    query.addBindValue(table);
    if (!query.exec()) {
        throwSqlError(query.lastError());
    }
    return query.next() ? query.value(0).toString() : QString();
}

QVariant OdbcEngine::insertRow(QSqlDatabase& db, const QString& table, const QStringList& columns,
                               const QVariantList& values) const {
    QStringList names;
    for (const QString& column : columns) {
        names << quoteName(column);
    }
    // The identity is read in the same batch: SCOPE_IDENTITY is not affected by triggers.
    const QString insert =
        columns.isEmpty() ? QStringLiteral("insert into %1 default values").arg(quoteName(table))
                          : QStringLiteral("insert into %1 (%2) values (%3)")
                                .arg(quoteName(table), names.join(u','),
                                     QStringList(columns.size(), QStringLiteral("?")).join(u','));
    QSqlQuery query(db);
    if (!query.prepare(QStringLiteral("set nocount on; %1; select cast(scope_identity() as int)")
                           .arg(insert))) {
        throwSqlError(query.lastError());
    }
    for (const QVariant& value : values) {
        query.addBindValue(value);
    }
    if (!query.exec()) {
        throwSqlError(query.lastError());
    }
    return query.next() ? query.value(0) : QVariant();
}

QString OdbcEngine::quoteName(const QString& name) const {
    return u'[' + QString(name).replace(u']', QStringLiteral("]]")) + u']';
}

}  // namespace qivo::platform
