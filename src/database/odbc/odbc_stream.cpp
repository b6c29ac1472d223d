#include "database/odbc/odbc_stream.h"

#include "database/odbc/odbc_wait.h"

namespace qivo::database {

OdbcStream::OdbcStream(void* connection, const QString& sql, bool utf8Text)
    : read_(std::make_shared<Blocks>()) {
    task_ = OdbcTask::start([read = read_, connection, sql, utf8Text](OdbcTask& task) {
        const auto handOver = [&](OdbcRows& rows) {
            task.handOver([&] { read->push_back(rows.takeRows()); });
        };
        OdbcStatement statement(connection);
        statement.execute(sql);
        OdbcRows rest = statement.readAll(utf8Text, handOver);
        handOver(rest);
    });
    if (!takeBlock()) {
        task_->finish();
    }
}

OdbcStream::~OdbcStream() {
    task_->closeWait();
}

bool OdbcStream::next() {
    while (++row_ >= block_.rowCount()) {
        if (!takeBlock()) {
            task_->finish();
            return false;
        }
    }
    return true;
}

bool OdbcStream::takeBlock() {
    return task_->waitFor([this] {
        if (read_->empty()) {
            return false;
        }
        block_ = std::move(read_->front());
        read_->pop_front();
        row_ = -1;
        return true;
    });
}

}  // namespace qivo::database
