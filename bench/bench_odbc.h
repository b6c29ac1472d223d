#pragma once

class QTemporaryDir;

namespace qivo::bench {

// The account lists loaded over ODBC from the stand-in SQL Server, beside the server's own time.
void benchOdbcLists(const QTemporaryDir& dir);

}  // namespace qivo::bench
