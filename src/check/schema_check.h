#pragma once

#include <QList>
#include <QString>
#include <QStringList>

namespace qivo::database {
class AdoConnection;
}

namespace qivo::check {

// What one table of the program looks like on the connected database.
struct TableCheck {
    QString table;
    bool tableMissing = false;
    QStringList missingColumns;  // as 表.列
    QString message;             // the database's own words when the table could not be read

    bool complete() const { return missingColumns.isEmpty() && message.isEmpty(); }
};

// Reads every table the program uses with one query naming exactly its columns and no rows;
// a table that fails is probed column by column, so each missing one is named.
QList<TableCheck> checkTables(database::AdoConnection& connection);

// Owner registrations (属性 = '业主') whose owner row is missing: the review panel shows
// "数据错误" for them.
int registrationsWithoutOwner(database::AdoConnection& connection);

}  // namespace qivo::check
