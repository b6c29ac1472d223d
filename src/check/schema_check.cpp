#include "check/schema_check.h"

#include "database/ado.h"
#include "db/schema.h"
#include "runtime/runtime_error.h"

namespace qivo::check {
namespace {

// The database's message when the columns cannot be selected, empty when they can.
QString selectFails(database::AdoConnection& connection, const QString& table,
                    const QStringList& columns) {
    try {
        database::Recordset rs;
        rs.Open("select " + columns.join(QStringLiteral(", ")) + " from " + table + " where 1=0",
                connection);
        return {};
    } catch (const runtime::RuntimeError& error) {
        return error.description().isEmpty() ? QStringLiteral("?") : error.description();
    }
}

TableCheck checkTable(database::AdoConnection& connection, const db::UsedTable& table) {
    TableCheck result;
    result.table = table.name;
    const QString message = selectFails(connection, table.name, table.columns);
    if (message.isEmpty()) {
        return result;
    }
    if (const QString whole = selectFails(connection, table.name, {QStringLiteral("*")});
        !whole.isEmpty()) {
        result.tableMissing = true;
        result.message = whole;
        return result;
    }
    for (const QString& column : table.columns) {
        if (!selectFails(connection, table.name, {column}).isEmpty()) {
            result.missingColumns << table.name + u'.' + column;
        }
    }
    if (result.missingColumns.isEmpty()) {
        result.message = message;  // each column reads alone, together they do not
    }
    return result;
}

}  // namespace

QList<TableCheck> checkTables(database::AdoConnection& connection) {
    QList<TableCheck> results;
    for (const db::UsedTable& table : db::usedTables()) {
        results.append(checkTable(connection, table));
    }
    return results;
}

int registrationsWithoutOwner(database::AdoConnection& connection) {
    database::Recordset rs;
    rs.Open(QStringLiteral("select count(*) from 业户互联网 where 属性 = '业主' and not exists "
                           "(select 1 from 业主表 where 业主表.ZH_ID = 业户互联网.ZH_ID)"),
            connection);
    return rs.Eof() ? 0 : rs.field(0).toInt();
}

}  // namespace qivo::check
