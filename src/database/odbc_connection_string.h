#pragma once

#include <QMap>
#include <QString>
#include <QStringList>

namespace qivo::database {

// The ODBC drivers registered on this machine (odbcinst.ini, or the registry on Windows).
QStringList installedDrivers();

// The ODBC driver to use: $QIVO_ODBC_DRIVER, else the best installed SQL Server driver.
QString odbcDriverName();

// The ODBC connection string for the parts of an ADO connection string. FreeTDS gets the
// server and port apart ("host,port"; a plain host on 1433; "host\instance" alone, looked up by
// name); the Microsoft drivers take SQL Server's own "host,port". Values that hold ODBC
// separators or outer blanks go inside braces.
QString odbcConnectionString(const QMap<QString, QString>& parts, const QString& driver);

}  // namespace qivo::database
