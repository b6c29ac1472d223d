#pragma once

class QTemporaryDir;

namespace qivo::bench {

// The account lists loaded over ODBC from the stand-in SQL Server, beside the server's own time,
// and from Babelfish holding the same rows; each beside the raw ODBC floor of its SQL text.
void benchOdbcLists(const QTemporaryDir& dir);

}  // namespace qivo::bench
