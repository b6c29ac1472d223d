#pragma once

#include <QList>
#include <QPair>
#include <QString>
#include <QVariant>

#include "support/tds_wire.h"

struct sqlite3;

namespace qivo::test::tds {

using Parameters = QList<QPair<QString, QVariant>>;  // "@P1" -> value

// Runs a request's SQL text on the embedded database and writes what SQL Server answers: for
// each statement its columns, rows and DONE (DONEINPROC inside a procedure call); at the first
// failing statement its error, and the rest of the text is not run. Every DONE written says more
// follows: the caller ends the answer. Returns whether every statement ran. varchar goes out in
// the given code page, under a collation of it.
bool runText(sqlite3* db, const QString& text, const Parameters& parameters, bool inProcedure,
             int codePage, Writer& out);

// The SQL Server type of a table column of the estate schema, by name and embedded declared type:
// its name and declared length (characters of nvarchar, bytes of varchar; Null for the others).
struct ServerType {
    QString name;
    QVariant length;
};
ServerType serverType(const QString& column, const QString& declared);

void writeDone(Writer& out, quint8 token, quint16 status, quint64 count = 0);
void writeError(Writer& out, quint32 number, const QString& message);

}  // namespace qivo::test::tds
