#include "support/odbc_fixture.h"

#include "runtime/settings.h"
#include "session/connection.h"

namespace qivo::test {

OdbcFixture::OdbcFixture(const std::function<void(FixtureDb&)>& seed) {
    if (seed) {
        seed(db);
    }
    server_ = std::make_unique<TdsServer>(db.path());
    server_->setLoginPassword("secret");
    reconnect();
}

void OdbcFixture::reconnect() {
    QString user = "sa", password = "secret", catalog = "qivo", source = server_->dataSource();
    // As the settings store holds them, for the screens that connect again (sign-in).
    runtime::SaveSetting("Merivane", "DBConfig", "Svr", source);
    runtime::SaveSetting("Merivane", "DBConfig", "UID", user);
    runtime::SaveSetting("Merivane", "DBConfig", "PWD", password);
    runtime::SaveSetting("Merivane", "DBConfig", "DBname", catalog);
    if (!Connection::OpenConnection(user, password, catalog, source)) {
        qFatal("the stand-in server refused the connection");
    }
}

QString chineseText(int length) {
    QString text;
    for (int i = 0; i < length; ++i) {
        text += QChar(0x4E00 + (i * 37) % 20000);
    }
    return text;
}

bool useFreeTds() {
    static QTemporaryDir directory;
    if (!registerFreeTds(directory.path())) {
        qWarning("FreeTDS's ODBC driver (Debian tdsodbc) is not installed");
        return false;
    }
    qputenv("QIVO_ODBC_DRIVER", "FreeTDS");
    return true;
}

}  // namespace qivo::test
