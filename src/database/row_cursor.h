#pragma once

#include <QByteArrayView>
#include <QStringList>
#include <QVariant>
#include <optional>

namespace qivo::database {

// One forward pass over the rows of a query. Errors are runtime::RuntimeError.
class RowCursor {
  public:
    virtual ~RowCursor() = default;
    virtual QStringList columnNames() const = 0;
    // Moves to the next row; false after the last.
    virtual bool next() = 0;
    // A column of the current row; Null is a null QVariant.
    virtual QVariant value(int column) const = 0;
    // Whether the database declares the column as a date, for writing typed text back.
    virtual bool isDate(int) const { return false; }
    // The same column as the engine's own UTF-8 bytes where it holds the value as text (Null is
    // empty), valid until next(); nothing where it holds it otherwise.
    virtual std::optional<QByteArrayView> utf8(int) const { return std::nullopt; }
    // The same column as a whole number where the engine holds it as one; nothing otherwise.
    virtual std::optional<qint64> integer(int) const { return std::nullopt; }
};

}  // namespace qivo::database
