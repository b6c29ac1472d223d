#pragma once

#include <deque>
#include <memory>

#include "database/odbc/odbc_statement.h"
#include "database/row_cursor.h"

namespace qivo::database {

class OdbcTask;

// The rows of one query as they arrive: a worker thread reads the result to its end, a block at
// a time, while the screen takes the blocks already read, so a long list is filled while the
// rest of it is still on its way. A result of less than a block is read whole, with any error
// of its statement, before the stream is made.
class OdbcStream final : public RowCursor {
  public:
    // Runs the query and waits for its first block; throws what the query failed with so far.
    OdbcStream(void* connection, const QString& sql, bool utf8Text);
    ~OdbcStream() override;

    // The reading, which keeps the connection busy until it ends.
    std::shared_ptr<OdbcTask> task() const { return task_; }

    QStringList columnNames() const override { return block_.names; }
    // Waits for the next block where the rows read so far are taken; throws what the rest of
    // the result failed with.
    bool next() override;
    QVariant value(int column) const override { return block_.value(row_, column); }
    bool isDate(int column) const override { return block_.isDate(column); }
    std::optional<QByteArrayView> utf8(int column) const override {
        return block_.utf8(row_, column);
    }
    std::optional<qint64> integer(int column) const override {
        return block_.integer(row_, column);
    }

  private:
    // Blocks read and not yet taken, under the task's lock.
    using Blocks = std::deque<OdbcRows>;
    bool takeBlock();

    std::shared_ptr<Blocks> read_;
    std::shared_ptr<OdbcTask> task_;
    OdbcRows block_;
    qsizetype row_ = -1;
};

}  // namespace qivo::database
