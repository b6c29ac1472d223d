#pragma once

#include "database/row_cursor.h"

struct sqlite3;
struct sqlite3_stmt;

namespace qivo::database {

class SqliteWatch;

// A read pass straight on the embedded engine's statement: a column is converted only when a
// screen reads it, where Qt's driver converts every column of every row.
class SqliteCursor final : public RowCursor {
  public:
    SqliteCursor(sqlite3* handle, const QString& sql, SqliteWatch& watch);
    ~SqliteCursor() override;
    SqliteCursor(const SqliteCursor&) = delete;
    SqliteCursor& operator=(const SqliteCursor&) = delete;

    QStringList columnNames() const override;
    bool next() override;
    QVariant value(int column) const override;
    std::optional<QByteArrayView> utf8(int column) const override;
    std::optional<qint64> integer(int column) const override;

  private:
    bool step();
    [[noreturn]] void fail() const;

    sqlite3* handle_;
    SqliteWatch& watch_;
    sqlite3_stmt* statement_ = nullptr;
};

}  // namespace qivo::database
