#pragma once

#include <QString>

struct sqlite3;

namespace qivo::test::tds {

// Gives one session's embedded database the part of SQL Server's catalog that the program and its
// workstation check read: sys.identity_columns, sys.triggers, sys.syslanguages and
// INFORMATION_SCHEMA.COLUMNS (with the estate schema's SQL Server types), object_id(),
// has_perms_by_name() (the stand-in login holds every permission) and replicate().
void addCatalog(sqlite3* db);

// Rewrites the SQL Server forms of one statement that the embedded engine does not read:
// N'...' literals, @@language, scope_identity() and the catalog's two-part names.
QString embeddedForms(const QString& statement);

}  // namespace qivo::test::tds
