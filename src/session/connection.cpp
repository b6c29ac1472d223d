#include "session/connection.h"

#include "platform/msgbox.h"
#include "platform/runtime_error.h"
#include "platform/settings.h"

namespace qivo::Connection {

bool OpenConnection(QString& userId, QString& password, QString& catalog, QString& dataSource) {
    try {
        ConnectionString = "Provider=SQLOLEDB.1;Password=" + password +
                           ";Persist Security Info=False;User ID=" + userId + ";Initial Catalog='" +
                           catalog + "';Data Source='" + dataSource + "'";
        Cn = std::make_unique<platform::AdoConnection>();
        Cn->ConnectionString = ConnectionString;
        Cn->ConnectionTimeout = 30;
        Cn->CommandTimeout = 0;
        Cn->Open();
        return true;
    } catch (const platform::RuntimeError& error) {
        platform::MsgBox("错误信息：" + error.description(), platform::vbInformation, "信息文本");
        return false;
    }
}

platform::AdoConnection& cn() {
    if (!Cn) {
        Cn = std::make_unique<platform::AdoConnection>();
    }
    return *Cn;
}

}  // namespace qivo::Connection

namespace qivo {

bool ConnectDatabase() {
    const QString app = QStringLiteral("Merivane");
    const QString section = QStringLiteral("DBConfig");
    QString dataSource = platform::GetSetting(app, section, "Svr");
    QString userId = platform::GetSetting(app, section, "UID");
    QString password = platform::GetSetting(app, section, "PWD");
    QString catalog = platform::GetSetting(app, section, "DBname");
    if (!Connection::OpenConnection(userId, password, catalog, dataSource)) {
        platform::MsgBox("数据库连接失败!", platform::vbInformation, "连接提示");
        return false;
    }
    return true;
}

}  // namespace qivo
