#pragma once

#include <QByteArrayView>
#include <QSqlQuery>
#include <QStringList>
#include <QVariant>
#include <memory>
#include <optional>

namespace qivo::platform {

// One forward pass over the rows of a query. Errors are RuntimeError.
class RowCursor {
  public:
    virtual ~RowCursor() = default;
    virtual QStringList columnNames() const = 0;
    // Moves to the next row; false after the last.
    virtual bool next() = 0;
    // A column of the current row; Null is a null QVariant.
    virtual QVariant value(int column) const = 0;
    // The same column as the engine's own UTF-8 bytes where it holds the value as text (Null is
    // empty), valid until next(); nothing where it holds it otherwise.
    virtual std::optional<QByteArrayView> utf8(int) const { return std::nullopt; }
};

// A cursor over an executed Qt SQL query.
class QtRowCursor final : public RowCursor {
  public:
    explicit QtRowCursor(std::unique_ptr<QSqlQuery> executed) : query_(std::move(executed)) {}
    QStringList columnNames() const override;
    bool next() override { return query_->next(); }
    QVariant value(int column) const override { return query_->value(column); }

  private:
    std::unique_ptr<QSqlQuery> query_;
};

}  // namespace qivo::platform
