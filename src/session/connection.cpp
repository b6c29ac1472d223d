#include "session/connection.h"

#include "runtime/runtime_error.h"
#include "runtime/settings.h"
#include "session/query_wait.h"
#include "widgets/msgbox.h"

namespace qivo::Connection {

bool OpenConnection(QString& userId, QString& password, QString& catalog, QString& dataSource) {
    try {
        ConnectionString = composeConnectionString(userId, password, catalog, dataSource);
        Cn = std::make_unique<database::AdoConnection>();
        prepareConnection(*Cn, ConnectionString);
        showWaitWindowForSlowStatements();
        Cn->Open();
        return true;
    } catch (const runtime::RuntimeError& error) {
        widgets::MsgBox("错误信息：" + error.description(), widgets::vbInformation, "信息文本");
        return false;
    }
}

QString composeConnectionString(const QString& userId, const QString& password,
                                const QString& catalog, const QString& dataSource) {
    return "Provider=SQLOLEDB.1;Password=" + password +
           ";Persist Security Info=False;User ID=" + userId + ";Initial Catalog='" + catalog +
           "';Data Source='" + dataSource + "'";
}

void prepareConnection(database::AdoConnection& connection, const QString& connectionString) {
    connection.ConnectionString = connectionString;
    connection.ConnectionTimeout = 30;
    connection.CommandTimeout = 0;
}

database::AdoConnection& cn() {
    if (!Cn) {
        Cn = std::make_unique<database::AdoConnection>();
    }
    return *Cn;
}

}  // namespace qivo::Connection

namespace qivo {

namespace {

const QString kApp = QStringLiteral("Merivane");
const QString kSection = QStringLiteral("DBConfig");

}  // namespace

ConnectionSettings readConnectionSettings() {
    ConnectionSettings settings;
    settings.location = runtime::settingsLocation(kApp, kSection);
    settings.dataSource = runtime::GetSetting(kApp, kSection, "Svr");
    settings.userId = runtime::GetSetting(kApp, kSection, "UID");
    settings.password = runtime::GetSetting(kApp, kSection, "PWD");
    settings.catalog = runtime::GetSetting(kApp, kSection, "DBname");
    return settings;
}

QString connectionSettingsHelp() {
#ifdef Q_OS_WIN
    const QString place = runtime::settingsLocation(kApp, kSection);
#else
    const QString place = runtime::settingsLocation(kApp, kSection) + " 的 [DBConfig] 节";
#endif
    return "设置位置：" + place +
           "\n四项设置：Svr（SQL Server 服务器，如 dbserver,1433）、UID（登录名）、PWD（密码）、"
           "DBname（数据库名）";
}

QString missingServerText() {
#ifdef Q_OS_WIN
    const QString demo =
        QStringLiteral("程序文件夹中的 qivo-demo-db.exe --out %USERPROFILE%\\qivo-demo.db");
#else
    const QString demo = QStringLiteral("qivo-demo-db --out ~/qivo-demo.db");
#endif
    return "没有数据库连接设置：设置中没有服务器（Svr）。\n\n" + connectionSettingsHelp() +
           "\n\n请系统管理员写好这四项设置，再运行 qivo-review --check 检查连接。\n\n"
           "没有服务器也可先试用：运行 " +
           demo + "，它写出一个演示数据库，并把 Svr 指向它。";
}

bool ConnectDatabase() {
    ConnectionSettings settings = readConnectionSettings();
    if (settings.dataSource.isEmpty()) {
        widgets::MsgBox(missingServerText(), widgets::vbInformation, "连接提示");
        return false;
    }
    if (!Connection::OpenConnection(settings.userId, settings.password, settings.catalog,
                                    settings.dataSource)) {
        widgets::MsgBox("数据库连接失败!", widgets::vbInformation, "连接提示");
        return false;
    }
    return true;
}

}  // namespace qivo
