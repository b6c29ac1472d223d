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

ConnectionSettings readConnectionSettings() {
    const QString app = QStringLiteral("Merivane");
    const QString section = QStringLiteral("DBConfig");
    ConnectionSettings settings;
    settings.location = runtime::settingsLocation(app, section);
    settings.dataSource = runtime::GetSetting(app, section, "Svr");
    settings.userId = runtime::GetSetting(app, section, "UID");
    settings.password = runtime::GetSetting(app, section, "PWD");
    settings.catalog = runtime::GetSetting(app, section, "DBname");
    return settings;
}

bool ConnectDatabase() {
    ConnectionSettings settings = readConnectionSettings();
    if (!Connection::OpenConnection(settings.userId, settings.password, settings.catalog,
                                    settings.dataSource)) {
        widgets::MsgBox("数据库连接失败!", widgets::vbInformation, "连接提示");
        return false;
    }
    return true;
}

}  // namespace qivo
