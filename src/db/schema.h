#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <optional>

namespace qivo::database {
class AdoConnection;
}

namespace qivo::db {

// Creates every table the program reads or writes in an empty embedded database: keys as
// identities, text columns with the SQL-Server-like collation, date columns that accept only
// dates, flags as 0/1, and the indexes an estate database has on its keys.
void createEmbeddedSchema(database::AdoConnection& connection);

// A table the program reads or writes, with the columns it uses, in the embedded schema's order.
struct UsedTable {
    QString name;
    QStringList columns;
};
QList<UsedTable> usedTables();

// What a text column of the estate schema holds at most: characters of nvarchar, bytes of code
// page 936 of varchar. Nothing for a column that is not text.
struct TextCapacity {
    bool wide = false;
    int size = 0;
};
std::optional<TextCapacity> textCapacity(const QString& table, const QString& column);

}  // namespace qivo::db
