#include "database/sqlite/sqlite_cursor.h"

#include <sqlite3.h>

#include <QSqlError>

#include "database/engine.h"
#include "database/sqlite/sqlite_watch.h"
#include "runtime/runtime_error.h"

namespace qivo::database {

SqliteCursor::SqliteCursor(sqlite3* handle, const QString& sql, SqliteWatch& watch)
    : handle_(handle), watch_(watch) {
    const QByteArray text = sql.toUtf8();
    if (sqlite3_prepare_v2(handle_, text.constData(), static_cast<int>(text.size()), &statement_,
                           nullptr) != SQLITE_OK) {
        fail();
    }
    if (!statement_) {
        throw runtime::RuntimeError(runtime::err::ProviderError,
                                    QStringLiteral("命令文本没有查询。"));
    }
}

SqliteCursor::~SqliteCursor() {
    sqlite3_finalize(statement_);
}

QStringList SqliteCursor::columnNames() const {
    QStringList names;
    for (int i = 0; i < sqlite3_column_count(statement_); ++i) {
        names << QString::fromUtf8(sqlite3_column_name(statement_, i));
    }
    return names;
}

bool SqliteCursor::next() {
    return watch_.run([this] { return step(); });
}

bool SqliteCursor::step() {
    switch (sqlite3_step(statement_)) {
        case SQLITE_ROW:
            return true;
        case SQLITE_DONE:
            return false;
        default:
            fail();
    }
}

QVariant SqliteCursor::value(int column) const {
    switch (sqlite3_column_type(statement_, column)) {
        case SQLITE_NULL:
            return {};
        case SQLITE_INTEGER:
            return QVariant(static_cast<qlonglong>(sqlite3_column_int64(statement_, column)));
        case SQLITE_FLOAT:
            return QVariant(sqlite3_column_double(statement_, column));
        case SQLITE_BLOB:
            return QByteArray(static_cast<const char*>(sqlite3_column_blob(statement_, column)),
                              sqlite3_column_bytes(statement_, column));
        default:
            return QString::fromUtf8(
                reinterpret_cast<const char*>(sqlite3_column_text(statement_, column)),
                sqlite3_column_bytes(statement_, column));
    }
}

std::optional<qint64> SqliteCursor::integer(int column) const {
    sqlite3_value* value = sqlite3_column_value(statement_, column);
    if (sqlite3_value_type(value) != SQLITE_INTEGER) {
        return std::nullopt;
    }
    return sqlite3_value_int64(value);
}

std::optional<QByteArrayView> SqliteCursor::utf8(int column) const {
    // One call into the statement instead of three: each takes the connection's lock.
    sqlite3_value* value = sqlite3_column_value(statement_, column);
    switch (sqlite3_value_type(value)) {
        case SQLITE_NULL:
            return QByteArrayView();
        case SQLITE_TEXT:
            return QByteArrayView(reinterpret_cast<const char*>(sqlite3_value_text(value)),
                                  sqlite3_value_bytes(value));
        default:
            // Asking for the text of a number would convert the column in place.
            return std::nullopt;
    }
}

void SqliteCursor::fail() const {
    const int code = sqlite3_extended_errcode(handle_);
    throwSqlError(QSqlError(QStringLiteral("无法执行查询"),
                            QString::fromUtf8(sqlite3_errmsg(handle_)), QSqlError::StatementError,
                            QString::number(code)));
}

}  // namespace qivo::database
