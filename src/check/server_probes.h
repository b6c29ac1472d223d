#pragma once

class QTextStream;

namespace qivo::database {
class AdoConnection;
}

namespace qivo::check {

// What only a SQL Server can show: several open record sets on the one connection, Chinese text
// through the program's own record set, the login's language and date format, column types,
// identities and triggers, permissions, and the program's saves in a transaction that is rolled
// back. One ✓/✗ line each; true when none failed.
bool runServerProbes(QTextStream& out, database::AdoConnection& connection);

}  // namespace qivo::check
