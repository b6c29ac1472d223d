#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QStringList>
#include <QVariant>
#include <array>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "database/row_cursor.h"

namespace qivo::database {

// Every row of one result, read in full so the statement can be released at once: SQL Server
// runs one statement at a time per connection, and the screens keep several record sets open.
// Text is kept as UTF-8 in one store, as the grid takes it; a value becomes a QVariant only when
// a screen asks for one.
class OdbcRows {
  public:
    enum class Kind : unsigned char { Text, Integer, Real, Bit, Date, DateTime };

    QStringList names;
    std::vector<Kind> kinds;

    qsizetype rowCount() const {
        return kinds.empty() ? 0 : qsizetype(cells_.size() / kinds.size());
    }
    // Null is a null QVariant.
    QVariant value(qsizetype row, int column) const;
    // A text, date or Null value (Null is empty) as the UTF-8 fieldText gives for it, valid
    // while the rows are (a date's until that column is asked again); nothing for a number.
    std::optional<QByteArrayView> utf8(qsizetype row, int column) const {
        const Cell& cell = cells_[std::size_t(row) * kinds.size() + std::size_t(column)];
        if (cell.size < 0) {
            return QByteArrayView();
        }
        if (kinds[column] == Kind::Text) {
            return QByteArrayView(text_.constData() + cell.at, cell.size);
        }
        return dateUtf8(cell, column);
    }
    // An integer value; nothing for Null or any other kind.
    std::optional<qint64> integer(qsizetype row, int column) const {
        const Cell& cell = cells_[std::size_t(row) * kinds.size() + std::size_t(column)];
        if (cell.size < 0 || kinds[column] != Kind::Integer) {
            return std::nullopt;
        }
        return cell.at;
    }
    bool isDate(int column) const { return kinds[column] >= Kind::Date; }

    // The next cell, in row order.
    void appendNull() { cells_.push_back({0, -1}); }
    void appendNumber(qint64 number) { cells_.push_back({number, 0}); }
    // Room for a text of at most `bytes` bytes at the end of the store, to be kept by appendText.
    char* textRoom(qsizetype bytes);
    void appendText(qsizetype bytes);
    // The rows so far, leaving these columns with no rows.
    OdbcRows takeRows();

  private:
    // A text's place in the store; a number's own value; size -1 for Null.
    struct Cell {
        qint64 at;
        qint64 size;
    };
    // A date's value as fieldText writes it; nothing for a number.
    std::optional<QByteArrayView> dateUtf8(const Cell& cell, int column) const;

    std::vector<Cell> cells_;
    QByteArray text_;
    // A date as text, one per column: a list shows dates, and Qt's local time costs a look at the
    // time zone for each.
    mutable std::vector<std::array<char, 20>> dateTexts_;
    qsizetype used_ = 0;
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
    // The first result that has columns, then every later result is consumed. utf8Text: the
    // driver hands out UTF-8 for SQL_C_CHAR (FreeTDS with ClientCharset=UTF-8); otherwise text
    // is read wide, as every Windows driver gives it exactly. With handOver, each full block of
    // rows is handed over as it arrives, to be taken from the rows given; the rest come back.
    using HandOver = std::function<void(OdbcRows&)>;
    OdbcRows readAll(bool utf8Text, const HandOver& handOver = {});
    // After readAll, the rows the statement changed: the last count it reported, which comes
    // after the counts of any trigger it set off.
    qint64 rowsChanged() const { return changed_; }

  private:
    struct Parameter;
    void bind(const QVariantList& values);
    bool moveToRows();
    void drain();
    void noteRowCount();
    void readInBlocks(OdbcRows& rows, const std::vector<qint64>& sizes, bool utf8Text,
                      const HandOver& handOver);
    void readByCell(OdbcRows& rows, bool utf8Text, const HandOver& handOver);
    void readText(OdbcRows& rows, int column, bool utf8Text);
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
    bool next() override { return ++row_ < rows_.rowCount(); }
    QVariant value(int column) const override { return rows_.value(row_, column); }
    bool isDate(int column) const override { return rows_.isDate(column); }
    std::optional<QByteArrayView> utf8(int column) const override {
        return rows_.utf8(row_, column);
    }
    std::optional<qint64> integer(int column) const override { return rows_.integer(row_, column); }

  private:
    OdbcRows rows_;
    qsizetype row_ = -1;
};

// Whether the connection is in autocommit mode, with no transaction of the program's open.
bool autocommitOn(void* connection);

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
