#include "session/connection.h"

#include "platform/msgbox.h"
#include "platform/runtime_error.h"
#include "platform/settings.h"

namespace qivo::Connection {

bool OpenConnection(QString& userId, QString& password, QString& catalog, QString& dataSource) {
    try {
        ConnectionString = composeConnectionString(userId, password, catalog, dataSource);
        Cn = std::make_unique<platform::AdoConnection>();
        prepareConnection(*Cn, ConnectionString);
        Cn->Open();
        return true;
    } catch (const platform::RuntimeError& error) {
        platform::MsgBox("错误信息：" + error.description(), platform::vbInformation, "信息文本");
        return false;
    }
}

QString composeConnectionString(const QString& userId, const QString& password,
                                const QString& catalog, const QString& dataSource) {
    return "Provider=SQLOLEDB.1;Password=" + password +
           ";Persist Security Info=False;User ID=" + userId + ";Initial Catalog='" + catalog +
           "';Data Source='" + dataSource + "'";
}

void prepareConnection(platform::AdoConnection& connection, const QString& connectionString) {
    connection.ConnectionString = connectionString;
    connection.ConnectionTimeout = 30;
    connection.CommandTimeout = 0;
}

platform::AdoConnection& cn() {
    if (!Cn) {
        Cn = std::make_unique<platform::AdoConnection>();
    }
    return *Cn;
}

}  // namespace qivo::Connection

namespace qivo {

ConnectionSettings readConnectionSettings() {
    const QString app = QStringLiteral("Merivane");
    const QString section = QStringLiteral("DBConfig");
    ConnectionSettings settings;
    settings.location = platform::settingsLocation(app, section);
    settings.dataSource = platform::GetSetting(app, section, "Svr");
    settings.userId = platform::GetSetting(app, section, "UID");
    settings.password = platform::GetSetting(app, section, "PWD");
    settings.catalog = platform::GetSetting(app, section, "DBname");
    return settings;
}

bool ConnectDatabase() {
    ConnectionSettings settings = readConnectionSettings();
    if (!Connection::OpenConnection(settings.userId, settings.password, settings.catalog,
                                    settings.dataSource)) {
        platform::MsgBox("数据库连接失败!", platform::vbInformation, "连接提示");
        return false;
    }
    return true;
}

}  // namespace qivo
