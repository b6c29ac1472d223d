#pragma once

#include <QTemporaryDir>
#include <memory>

#include "support/tds_server.h"
#include "support/test_support.h"

namespace qivo::test {

// A fixture database served by the stand-in SQL Server and opened through FreeTDS as the shared
// connection: what the tests write with exec() reaches the database over ODBC.
class OdbcFixture {
  public:
    // Seeds the embedded database before the server takes it over.
    explicit OdbcFixture(const std::function<void(FixtureDb&)>& seed = {});
    FixtureDb db;
    TdsServer& server() { return *server_; }
    // Opens the shared connection to the server again, as a new sign-in does.
    void reconnect();

  private:
    std::unique_ptr<TdsServer> server_;
};

// Chinese text of the given length, longer than one read of the driver when long enough.
QString chineseText(int length);

// Registers the driver for this process; false (with the reason logged) when it is missing.
bool useFreeTds();

}  // namespace qivo::test
