#include "platform/odbc_engine.h"

#include <QDir>
#include <QSettings>
#include <QSqlDriver>
#include <QSqlError>

#include "platform/dates.h"
#include "platform/odbc_statement.h"
#include "platform/row_cursor.h"
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

namespace {

// The ODBC connection handle under Qt's connection: statements go straight to it.
void* connectionHandle(QSqlDatabase& db) {
    const QVariant handle = db.driver()->handle();
    return *static_cast<void* const*>(handle.constData());
}

}  // namespace

std::unique_ptr<RowCursor> OdbcEngine::select(QSqlDatabase& db, const QString& sql) const {
    OdbcStatement statement(connectionHandle(db));
    statement.execute(sql);
    return std::make_unique<OdbcCursor>(statement.readAll());
}

void OdbcEngine::execute(QSqlDatabase& db, const QStringList& statements) const {
    if (statements.size() == 1) {
        OdbcStatement statement(connectionHandle(db));
        statement.execute(statements.front());
        statement.readAll();
        return;
    }
    runInTransaction(connectionHandle(db), statements);
}

QString OdbcEngine::identityColumn(QSqlDatabase& db, const QString& table) const {
    OdbcStatement statement(connectionHandle(db));
    statement.execute(
        QStringLiteral("select name from sys.identity_columns where object_id = object_id(?)"),
        {table});
    const OdbcRows rows = statement.readAll();
    return rows.rows.empty() ? QString() : rows.rows.front().value(0).toString();
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
    OdbcStatement statement(connectionHandle(db));
    statement.execute(
        QStringLiteral("set nocount on; %1; select cast(scope_identity() as int)").arg(insert),
        values);
    const OdbcRows rows = statement.readAll();
    return rows.rows.empty() ? QVariant() : rows.rows.front().value(0);
}

void OdbcEngine::updateRow(QSqlDatabase& db, const QString& table, const QStringList& columns,
                           const QVariantList& values, const QString& keyColumn,
                           const QVariant& key) const {
    OdbcStatement statement(connectionHandle(db));
    statement.execute(updateStatement(table, columns, keyColumn), values + QVariantList{key});
    statement.readAll();
}

// Typed dates go out as yyyymmdd, which SQL Server reads the same under every login language;
// other text goes unchanged, so the server still refuses what is not a date.
QVariant OdbcEngine::dateValue(const QVariant& typed) const {
    if (typed.typeId() != QMetaType::QString) {
        return typed;
    }
    const std::optional<QString> iso = normalizeDate(typed.toString());
    if (!iso) {
        return typed;
    }
    return QString(*iso).remove(u'-');
}

QString OdbcEngine::quoteName(const QString& name) const {
    return u'[' + QString(name).replace(u']', QStringLiteral("]]")) + u']';
}

}  // namespace qivo::platform
