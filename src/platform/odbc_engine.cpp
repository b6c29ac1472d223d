#include "platform/odbc_engine.h"

#include <QDir>
#include <QSettings>
#include <QSqlError>
#include <QSqlQuery>

#include "platform/runtime_error.h"
#include "platform/sql_text.h"

namespace qivo::platform {
namespace {

QStringList installedDrivers() {
#ifdef Q_OS_WIN
    QSettings registry(
        QStringLiteral("HKEY_LOCAL_MACHINE\\SOFTWARE\\ODBC\\ODBCINST.INI\\ODBC Drivers"),
        QSettings::NativeFormat);
    return registry.childKeys();
#else
    const QString dir = qEnvironmentVariable("ODBCSYSINI", QStringLiteral("/etc"));
    return QSettings(QDir(dir).filePath(QStringLiteral("odbcinst.ini")), QSettings::IniFormat)
        .childGroups();
#endif
}

// ODBC values holding separators go inside braces.
QString odbcValue(const QString& value) {
    if (value.contains(u';') || value.contains(u'{') || value.contains(u'}') ||
        value.contains(u'=')) {
        return u'{' + QString(value).replace(u'}', QStringLiteral("}}")) + u'}';
    }
    return value;
}

}  // namespace

QString odbcDriverName() {
    const QString fromEnvironment = qEnvironmentVariable("QIVO_ODBC_DRIVER");
    if (!fromEnvironment.isEmpty()) {
        return fromEnvironment;
    }
    const QStringList installed = installedDrivers();
    for (const char* preferred : {"ODBC Driver 18 for SQL Server", "ODBC Driver 17 for SQL Server",
                                  "SQL Server", "FreeTDS"}) {
        if (installed.contains(QLatin1String(preferred))) {
            return QLatin1String(preferred);
        }
    }
#ifdef Q_OS_WIN
    return QStringLiteral("SQL Server");
#else
    return QStringLiteral("FreeTDS");
#endif
}

QString odbcConnectionString(const QMap<QString, QString>& parts, const QString& driver) {
    QString server = parts.value(QStringLiteral("data source"));
    QString port;
    // FreeTDS takes the port apart; SQL Server's "host,port" is kept for the Microsoft drivers.
    if (driver.contains(QLatin1String("FreeTDS"), Qt::CaseInsensitive)) {
        const qsizetype comma = server.indexOf(u',');
        port = comma >= 0 ? server.mid(comma + 1).trimmed() : QStringLiteral("1433");
        server = comma >= 0 ? server.left(comma) : server;
    }
    QString result = QStringLiteral("DRIVER={%1};SERVER=%2;").arg(driver, odbcValue(server));
    if (!port.isEmpty()) {
        result += QStringLiteral("Port=%1;TDS_Version=7.3;ClientCharset=UTF-8;").arg(port);
    }
    result += QStringLiteral("DATABASE=%1;UID=%2;PWD=%3;")
                  .arg(odbcValue(parts.value(QStringLiteral("initial catalog"))),
                       odbcValue(parts.value(QStringLiteral("user id"))),
                       odbcValue(parts.value(QStringLiteral("password"))));
    if (driver.contains(QLatin1String("Driver 18"))) {
        result += QStringLiteral("TrustServerCertificate=yes;");
    }
    return result;
}

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
