// qivo-tsql PORT USER PASSWORD DATABASE (SCRIPT... | --sqlite FILE): runs T-SQL scripts (batches
// split at GO) on the SQL Server at 127.0.0.1:PORT through FreeTDS, or copies every row of an
// embedded database there. Stops at the first error, with status 1.
#include <sqlite3.h>

#include <QCoreApplication>
#include <QFile>
#include <QTemporaryDir>
#include <cstdio>

#include "runtime/runtime_error.h"
#include "support/tds_server.h"
#include "support/tsql_client.h"

using namespace qivo;

namespace {

QString literal(sqlite3_stmt* row, int column) {
    switch (sqlite3_column_type(row, column)) {
        case SQLITE_NULL:
            return QStringLiteral("NULL");
        case SQLITE_INTEGER:
        case SQLITE_FLOAT:
            return QString::fromUtf8(
                reinterpret_cast<const char*>(sqlite3_column_text(row, column)));
        default:
            return "N'" +
                   QString::fromUtf8(
                       reinterpret_cast<const char*>(sqlite3_column_text(row, column)))
                       .replace(u'\'', QStringLiteral("''")) +
                   u'\'';
    }
}

// Each row of a query as T-SQL literals joined by commas; with plain, the first column as it is.
QStringList rowsOf(sqlite3* db, const QString& sql, bool plain = false) {
    QStringList rows;
    sqlite3_stmt* statement = nullptr;
    sqlite3_prepare_v2(db, sql.toUtf8().constData(), -1, &statement, nullptr);
    while (sqlite3_step(statement) == SQLITE_ROW) {
        if (plain) {
            rows << QString::fromUtf8(
                reinterpret_cast<const char*>(sqlite3_column_text(statement, 0)));
            continue;
        }
        QStringList values;
        for (int i = 0; i < sqlite3_column_count(statement); ++i) {
            values << literal(statement, i);
        }
        rows << values.join(u',');
    }
    sqlite3_finalize(statement);
    return rows;
}

// One batch per table and thousand rows, keys kept: identity columns take them by
// IDENTITY_INSERT.
QStringList copyBatches(const QString& path) {
    sqlite3* db = nullptr;
    if (sqlite3_open_v2(path.toUtf8().constData(), &db, SQLITE_OPEN_READONLY, nullptr) !=
        SQLITE_OK) {
        throw runtime::RuntimeError(1, "cannot open " + path);
    }
    QStringList batches;
    for (const QString& table : rowsOf(db,
                                       "select name from sqlite_master where type = 'table' and "
                                       "name not like 'sqlite%' order by name",
                                       true)) {
        const QStringList names =
            rowsOf(db, "select name from pragma_table_info('" + table + "')", true);
        const bool identity = !rowsOf(db, "select 1 from pragma_table_info('" + table +
                                              "') where pk = 1 and type like 'INTEGER%'")
                                   .isEmpty();
        const QStringList rows = rowsOf(db, "select * from \"" + table + "\"");
        for (qsizetype first = 0; first < rows.size(); first += 1000) {
            QString batch = QStringLiteral("INSERT INTO %1 (%2) VALUES (%3)")
                                .arg(table, names.join(u','),
                                     rows.mid(first, 1000).join(QStringLiteral("),(")));
            if (identity) {
                batch = QStringLiteral("SET IDENTITY_INSERT %1 ON %2 SET IDENTITY_INSERT %1 OFF")
                            .arg(table, batch);
            }
            batches << batch;
        }
    }
    sqlite3_close(db);
    return batches;
}

}  // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    const QStringList args = app.arguments().mid(1);
    if (args.size() < 5) {
        std::fprintf(stderr,
                     "usage: qivo-tsql PORT USER PASSWORD DATABASE (SCRIPT... | --sqlite FILE)\n");
        return 2;
    }
    QTemporaryDir drivers;
    if (!test::registerFreeTds(drivers.path())) {
        std::fprintf(stderr,
                     "qivo-tsql: FreeTDS's ODBC driver (Debian tdsodbc) is not installed\n");
        return 1;
    }
    try {
        QStringList batches;
        if (args[4] == QLatin1String("--sqlite")) {
            batches = copyBatches(args.value(5));
        } else {
            for (const QString& path : args.mid(4)) {
                QFile file(path);
                if (!file.open(QIODevice::ReadOnly)) {
                    throw runtime::RuntimeError(1, "cannot read " + path);
                }
                batches << test::scriptBatches(QString::fromUtf8(file.readAll()));
            }
        }
        test::TsqlClient client(QStringLiteral("127.0.0.1"), args[0].toInt(), args[1], args[2],
                                args[3]);
        for (const QString& batch : batches) {
            client.run(batch);
        }
    } catch (const runtime::RuntimeError& error) {
        std::fprintf(stderr, "qivo-tsql: %ld %s\n", error.number(),
                     qPrintable(error.description()));
        return 1;
    }
    return 0;
}
