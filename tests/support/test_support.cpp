#include "support/test_support.h"

#include <QFile>
#include <QFileInfo>
#include <cstdio>

#ifdef Q_OS_WIN
#include <windows.h>
#endif

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

#ifdef Q_OS_WIN

namespace {

QString sandboxKey(const QString& home) {
    return QStringLiteral("Software\\Qivo tests\\") + QFileInfo(home).fileName();
}

}  // namespace

SettingsSandbox::SettingsSandbox() {
    qputenv("QIVO_SETTINGS_KEY", sandboxKey(home_.path()).toUtf8());
}

SettingsSandbox::~SettingsSandbox() {
    const QString key = sandboxKey(home_.path());
    RegDeleteTreeW(HKEY_CURRENT_USER, reinterpret_cast<const wchar_t*>(key.utf16()));
    RegDeleteKeyW(HKEY_CURRENT_USER, L"Software\\Qivo tests");  // once no suite uses it
}

#else

SettingsSandbox::SettingsSandbox() {
    qputenv("XDG_CONFIG_HOME", home_.path().toLocal8Bit());
}

SettingsSandbox::~SettingsSandbox() = default;

#endif

int finish(int status) {
#ifdef Q_OS_WIN
    std::fflush(nullptr);
    TerminateProcess(GetCurrentProcess(), UINT(status));
#endif
    return status;
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

FixtureDb::~FixtureDb() {
    Connection::Cn.reset();
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
