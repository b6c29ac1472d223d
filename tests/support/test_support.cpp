#include "support/test_support.h"

#include <QFile>

#include "database/ado.h"
#include "db/schema.h"
#include "runtime/end.h"
#include "runtime/settings.h"
#include "session/connection.h"

namespace qivo::test {

MsgBoxRecorder::MsgBoxRecorder() {
    widgets::setMsgBoxResponder([this](const widgets::MsgBoxRequest& request) {
        messages.append(request);
        if ((request.style & 0xF) != widgets::vbYesNo) {
            return widgets::vbOK;
        }
        if (replies_.empty()) {
            return widgets::vbYes;
        }
        const int reply = replies_.front();
        replies_.pop_front();
        return reply;
    });
}

MsgBoxRecorder::~MsgBoxRecorder() {
    widgets::setMsgBoxResponder({});
}

QStringList MsgBoxRecorder::prompts() const {
    QStringList result;
    for (const auto& message : messages) {
        result << message.prompt;
    }
    return result;
}

EndRecorder::EndRecorder() {
    runtime::setEndHandler([this] { ++count; });
}

EndRecorder::~EndRecorder() {
    runtime::setEndHandler({});
}

FixtureDb::FixtureDb() : path_(dir_.filePath("fixture.db")) {
    QFile(path_).open(QIODevice::WriteOnly);  // an empty file is an empty database
    runtime::SaveSetting("Merivane", "DBConfig", "Svr", dataSource());
    QString userId, password, catalog, source = dataSource();
    if (!Connection::OpenConnection(userId, password, catalog, source)) {
        qFatal("fixture database could not be opened");
    }
    db::createEmbeddedSchema(*Connection::Cn);
}

void FixtureDb::exec(const QString& sql) {
    Connection::cn().Execute(sql);
}

QVariant FixtureDb::scalar(const QString& sql) {
    database::Recordset rs;
    rs.Open(sql, Connection::cn());
    if (rs.Eof()) {
        return {};
    }
    return rs.field(0);
}

runtime::RuntimeError errorOf(const std::function<void()>& action) {
    try {
        action();
    } catch (const runtime::RuntimeError& error) {
        return error;
    }
    return {0, {}};
}

}  // namespace qivo::test
