#pragma once

#include <QStringList>
#include <QVariant>
#include <functional>
#include <memory>
#include <vector>

#include "database/row_cursor.h"

namespace qivo::database {

// Every row of one result, read in full so the statement can be released at once: SQL Server
// runs one statement at a time per connection, and the screens keep several record sets open.
struct OdbcRows {
    QStringList names;
    std::vector<bool> dates;  // which columns hold dates
    std::vector<QVariantList> rows;
};

// One statement on an ODBC connection (SQLHDBC), always forward-only and freed on destruction.
// Errors are runtime::RuntimeError with SQL Server's own number where the screens know it.
class OdbcStatement final {
  public:
    explicit OdbcStatement(void* connection);
    ~OdbcStatement();
    OdbcStatement(const OdbcStatement&) = delete;
    OdbcStatement& operator=(const OdbcStatement&) = delete;

    // Runs a text with '?' markers for the values: text goes as wide text, Null as a typeless
    // Null that any column accepts.
    void execute(const QString& sql, const QVariantList& values = {});
    // The first result that has columns, then every later result is consumed.
    OdbcRows readAll();
    // After readAll, the rows the statement changed: the last count it reported, which comes
    // after the counts of any trigger it set off.
    qint64 rowsChanged() const { return changed_; }

  private:
    struct Parameter;
    void bind(const QVariantList& values);
    bool moveToRows();
    void drain();
    void noteRowCount();
    QVariant readValue(int column, short type);
    QString readText(int column, bool& isNull);
    [[noreturn]] void fail() const;

    void* connection_;
    void* handle_ = nullptr;
    std::vector<std::unique_ptr<Parameter>> parameters_;
    qint64 changed_ = 0;
};

// A read pass over rows already fetched.
class OdbcCursor final : public RowCursor {
  public:
    explicit OdbcCursor(OdbcRows rows) : rows_(std::move(rows)) {}
    QStringList columnNames() const override { return rows_.names; }
    bool next() override { return ++row_ < static_cast<qsizetype>(rows_.rows.size()); }
    QVariant value(int column) const override { return rows_.rows[row_].value(column); }
    bool isDate(int column) const override { return rows_.dates[column]; }

  private:
    OdbcRows rows_;
    qsizetype row_ = -1;
};

// Runs work in one transaction on an ODBC connection: committed when it returns true, rolled back
// when it returns false or throws, and never committed once the user cancelled. Inside a
// transaction already open the work joins it, and the one who opened it commits or undoes it.
bool inTransaction(void* connection, const std::function<bool()>& work);

// Whether the driver knows the connection to the server is gone.
bool connectionDead(void* connection);

// Rolls back and switches autocommit on again where the driver is still in manual-commit mode;
// whether the driver is in autocommit mode afterwards. A driver can refuse the switch: FreeTDS
// rolls back first, and a server that has itself ended the transaction refuses that (3903).
bool autocommitRestored(void* connection);

// The server's @@trancount for the connection.
qint64 openTransactions(void* connection);

// The error a failed call on an ODBC handle reports, as a runtime::RuntimeError.
[[noreturn]] void throwOdbcError(short handleType, void* handle);

}  // namespace qivo::database
