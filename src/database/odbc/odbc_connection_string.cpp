#include "database/odbc/odbc_connection_string.h"

#ifdef Q_OS_WIN
#include <windows.h>

#include <sql.h>
#include <sqlext.h>

#include <iterator>
#else
#include <QDir>
#include <QSettings>
#endif

namespace qivo::database {
namespace {

// A value that holds ODBC separators or outer blanks goes inside braces. ODBC doubles a '}' in
// there; FreeTDS reads a braced value up to the first "};" as it stands, so it gets '}' once (a
// value holding "};" cannot reach it whole).
QString odbcValue(const QString& value, bool freeTds) {
    static const QString separators = QStringLiteral(";{}=");
    const bool braced =
        std::any_of(value.begin(), value.end(), [](QChar c) { return separators.contains(c); }) ||
        (!value.isEmpty() && (value.front().isSpace() || value.back().isSpace()));
    if (!braced) {
        return value;
    }
    return u'{' + (freeTds ? value : QString(value).replace(u'}', QStringLiteral("}}"))) + u'}';
}

struct ServerAndPort {
    QString server;
    QString port;
};

// FreeTDS reads the port from a key of its own. With a port the instance name is not needed
// (SQL Server's own clients ignore it then); without one FreeTDS asks the server's browser.
ServerAndPort freeTdsServer(const QString& dataSource) {
    const qsizetype comma = dataSource.lastIndexOf(u',');
    if (comma >= 0) {
        const QString host = dataSource.left(comma);
        return {host.left(host.indexOf(u'\\') >= 0 ? host.indexOf(u'\\') : host.size()),
                dataSource.mid(comma + 1).trimmed()};
    }
    if (dataSource.contains(u'\\')) {
        return {dataSource, {}};
    }
    return {dataSource, QStringLiteral("1433")};
}

}  // namespace

QStringList installedDrivers() {
#ifdef Q_OS_WIN
    QStringList drivers;
    SQLHENV environment = SQL_NULL_HENV;
    if (!SQL_SUCCEEDED(SQLAllocHandle(SQL_HANDLE_ENV, SQL_NULL_HANDLE, &environment))) {
        return drivers;
    }
    SQLSetEnvAttr(environment, SQL_ATTR_ODBC_VERSION, reinterpret_cast<SQLPOINTER>(SQL_OV_ODBC3),
                  0);
    SQLWCHAR name[256];
    SQLSMALLINT length = 0;
    SQLSMALLINT attributesLength = 0;
    for (SQLUSMALLINT direction = SQL_FETCH_FIRST;
         SQL_SUCCEEDED(SQLDriversW(environment, direction, name, SQLSMALLINT(std::size(name)),
                                   &length, nullptr, 0, &attributesLength));
         direction = SQL_FETCH_NEXT) {
        drivers << QString::fromWCharArray(reinterpret_cast<const wchar_t*>(name),
                                           qMin<int>(length, int(std::size(name)) - 1));
    }
    SQLFreeHandle(SQL_HANDLE_ENV, environment);
    return drivers;
#else
    const QString dir = qEnvironmentVariable("ODBCSYSINI", QStringLiteral("/etc"));
    return QSettings(QDir(dir).filePath(QStringLiteral("odbcinst.ini")), QSettings::IniFormat)
        .childGroups();
#endif
}

QString odbcDriverName() {
    const QString fromEnvironment = qEnvironmentVariable("QIVO_ODBC_DRIVER");
    return fromEnvironment.isEmpty() ? chooseOdbcDriver(installedDrivers()) : fromEnvironment;
}

QString chooseOdbcDriver(const QStringList& installed) {
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
    const QString dataSource = parts.value(QStringLiteral("data source"));
    const bool freeTds = driver.contains(QLatin1String("FreeTDS"), Qt::CaseInsensitive);
    const ServerAndPort target =
        freeTds ? freeTdsServer(dataSource) : ServerAndPort{dataSource, {}};
    const auto value = [freeTds](const QString& text) { return odbcValue(text, freeTds); };
    QString result = QStringLiteral("DRIVER={%1};SERVER=%2;").arg(driver, value(target.server));
    if (!target.port.isEmpty()) {
        result += QStringLiteral("Port=%1;").arg(value(target.port));
    }
    if (freeTds) {
        // An empty language leaves the login's own default in force, as the other drivers do;
        // FreeTDS would otherwise ask for us_english.
        result += QStringLiteral("TDS_Version=7.3;ClientCharset=UTF-8;Language=;");
    }
    result += QStringLiteral("DATABASE=%1;UID=%2;PWD=%3;")
                  .arg(value(parts.value(QStringLiteral("initial catalog"))),
                       value(parts.value(QStringLiteral("user id"))),
                       value(parts.value(QStringLiteral("password"))));
    if (driver.contains(QLatin1String("Driver 18"))) {
        result += QStringLiteral("TrustServerCertificate=yes;");
    }
    return result;
}

}  // namespace qivo::database
