#include "support/test_support.h"

#include <QFile>

#include "db/schema.h"
#include "platform/ado.h"
#include "platform/end.h"
#include "platform/settings.h"
#include "session/connection.h"

namespace qivo::test {

MsgBoxRecorder::MsgBoxRecorder() {
    platform::setMsgBoxResponder([this](const platform::MsgBoxRequest& request) {
        messages.append(request);
        if ((request.style & 0xF) != platform::vbYesNo) {
            return platform::vbOK;
        }
        if (replies_.empty()) {
            return platform::vbYes;
        }
        const int reply = replies_.front();
        replies_.pop_front();
        return reply;
    });
}

MsgBoxRecorder::~MsgBoxRecorder() {
    platform::setMsgBoxResponder({});
}

QStringList MsgBoxRecorder::prompts() const {
    QStringList result;
    for (const auto& message : messages) {
        result << message.prompt;
    }
    return result;
}

EndRecorder::EndRecorder() {
    platform::setEndHandler([this] { ++count; });
}

EndRecorder::~EndRecorder() {
    platform::setEndHandler({});
}

FixtureDb::FixtureDb() : path_(dir_.filePath("fixture.db")) {
    QFile(path_).open(QIODevice::WriteOnly);  // an empty file is an empty database
    platform::SaveSetting("Merivane", "DBConfig", "Svr", dataSource());
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
    platform::Recordset rs;
    rs.Open(sql, Connection::cn());
    if (rs.Eof()) {
        return {};
    }
    return rs.field(0);
}

}  // namespace qivo::test
