#pragma once

#include <QString>
#include <memory>

#include "support/tsql_client.h"

namespace qivo::test {

// The Babelfish server the CTest fixture started (babelfish_start): its port and login, read
// from the state folder named by QIVO_BABELFISH.
class BabelfishServer {
  public:
    // Empty with the reason in error() when the fixture has not started a server.
    BabelfishServer();
    QString error() const { return error_; }
    QString dataSource() const { return QStringLiteral("127.0.0.1,%1").arg(port_); }
    // Points the settings store at the estate database and opens the shared connection.
    bool connectProgram() const;
    // A connection of the tests' own to the estate database.
    std::unique_ptr<TsqlClient> client() const;
    // Writes the suites' rows afresh.
    void seed() const;
    // Replaces every row of the estate database with those of an embedded database (qivo-tsql,
    // named by QIVO_TSQL).
    bool copyRows(const QString& embedded) const;
    // Stops the server and starts it again on the same port: every connection is dropped.
    bool restart() const;
    // What the server logged so far.
    QString log() const;

  private:
    QString state_;
    QString home_;  // where the server's bundle and data are
    QString login_;
    QString password_;
    int port_ = 0;
    QString error_;
};

}  // namespace qivo::test
