#pragma once

#include <QMap>
#include <QString>
#include <QStringList>

namespace qivo::database {

// The ODBC drivers registered on this machine: odbcinst.ini, or on Windows as the driver
// manager lists them (SQLDrivers).
QStringList installedDrivers();

// The best SQL Server driver of those installed: "ODBC Driver 18 for SQL Server", "ODBC Driver
// 17 for SQL Server", "SQL Server", then "FreeTDS"; with none of them, the one the system
// usually has ("SQL Server" on Windows, "FreeTDS" elsewhere).
QString chooseOdbcDriver(const QStringList& installed);

// The ODBC driver to use: $QIVO_ODBC_DRIVER, else chooseOdbcDriver(installedDrivers()).
QString odbcDriverName();

// The ODBC connection string for the parts of an ADO connection string. FreeTDS gets the
// server and port apart ("host,port"; a plain host on 1433; "host\instance" alone, looked up by
// name); the Microsoft drivers take SQL Server's own "host,port". Values that hold ODBC
// separators or outer blanks go inside braces.
QString odbcConnectionString(const QMap<QString, QString>& parts, const QString& driver);

}  // namespace qivo::database
