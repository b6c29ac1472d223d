#pragma once

#include <QString>
#include <QStringList>

namespace qivo::database {

// Splits a command text into its statements: at ';' and before a Delete, Update or Insert that
// starts a new statement after white space, outside quotes, brackets, parentheses
// and case/begin ... end blocks.
QStringList splitStatements(const QString& sql);

// Rewrites the SQL Server forms of one statement for the embedded engine: "Delete <table>"
// gains its "From", and '+' joining two texts ("...) + (..." or quoted literals) becomes '||'.
// Text inside quotes and brackets is never touched.
QString translateForSqlite(const QString& statement);

// The length SQL Server counts for text in a column: characters in nvarchar, bytes of code page
// 936 in varchar, where a Chinese character takes two. A character the code page lacks also
// counts two, which errs on the side of refusing.
qsizetype serverTextLength(const QString& text, bool wide);

}  // namespace qivo::database
