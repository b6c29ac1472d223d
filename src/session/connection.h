#pragma once

#include <QString>
#include <memory>

#include "database/ado.h"

namespace qivo::Connection {

// The shared connection, replaced by every OpenConnection and never closed by the program.
inline std::unique_ptr<database::AdoConnection> Cn;

// The last connection string OpenConnection composed.
inline QString ConnectionString;

// Opens a new shared connection. On failure shows "错误信息：" + the error's description and
// returns false.
bool OpenConnection(QString& userId, QString& password, QString& catalog, QString& dataSource);

// The shared connection; created unopened on first use when nothing has opened one yet.
database::AdoConnection& cn();

// The connection string OpenConnection composes: values in as they stand.
QString composeConnectionString(const QString& userId, const QString& password,
                                const QString& catalog, const QString& dataSource);

// Gives a new connection the shared connection's string and time-outs (login 30 s, commands
// without limit), ready to Open.
void prepareConnection(database::AdoConnection& connection, const QString& connectionString);

}  // namespace qivo::Connection

namespace qivo {

// The four connection values as the settings store holds them, and where it holds them.
struct ConnectionSettings {
    QString location;
    QString dataSource;
    QString userId;
    QString password;
    QString catalog;
};
ConnectionSettings readConnectionSettings();

// Where the four connection settings are read from and what they are, for a person setting up
// a workstation: two lines.
QString connectionSettingsHelp();

// What a workstation without a server in its settings is told: where the settings are read
// from, the four keys, the check to run once they are written, and how to try the demo database.
QString missingServerText();

// Reads the four connection settings and opens the shared connection; on failure shows
// "数据库连接失败!" and returns false. Without a server in the settings it says where they are
// read from instead, and does not try.
bool ConnectDatabase();

}  // namespace qivo
