#include "support/babelfish_fixture.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QSettings>

#include "db/schema.h"
#include "runtime/settings.h"
#include "session/connection.h"

namespace qivo::test {

BabelfishServer::BabelfishServer() : state_(qEnvironmentVariable("QIVO_BABELFISH")) {
    const QString file = QDir(state_).filePath(QStringLiteral("server"));
    if (state_.isEmpty() || !QFile::exists(file)) {
        error_ = QStringLiteral(
            "no Babelfish server: the CTest fixture babelfish_start did not start one (see its "
            "output; ctest -R babelfish runs it with the suites)");
        return;
    }
    const QSettings server(file, QSettings::IniFormat);
    port_ = server.value(QStringLiteral("port")).toInt();
    login_ = server.value(QStringLiteral("login")).toString();
    password_ = server.value(QStringLiteral("password")).toString();
    home_ = server.value(QStringLiteral("home")).toString();
}

bool BabelfishServer::connectProgram() const {
    QString user = login_, password = password_, catalog = QStringLiteral("estate"),
            source = dataSource();
    runtime::SaveSetting("Merivane", "DBConfig", "Svr", source);
    runtime::SaveSetting("Merivane", "DBConfig", "UID", user);
    runtime::SaveSetting("Merivane", "DBConfig", "PWD", password);
    runtime::SaveSetting("Merivane", "DBConfig", "DBname", catalog);
    return Connection::OpenConnection(user, password, catalog, source);
}

std::unique_ptr<TsqlClient> BabelfishServer::client() const {
    return std::make_unique<TsqlClient>(QStringLiteral("127.0.0.1"), port_, login_, password_,
                                        QStringLiteral("estate"));
}

void BabelfishServer::seed() const {
    QFile script(qEnvironmentVariable("QIVO_BABELFISH_SCRIPTS") + "/estate_seed.sql");
    script.open(QIODevice::ReadOnly);
    const auto connection = client();
    for (const QString& batch : scriptBatches(QString::fromUtf8(script.readAll()))) {
        connection->run(batch);
    }
}

bool BabelfishServer::copyRows(const QString& embedded) const {
    const auto connection = client();
    for (const db::UsedTable& table : db::usedTables()) {
        connection->run("DELETE " + table.name);
    }
    return QProcess::execute(qEnvironmentVariable("QIVO_TSQL"),
                             {QString::number(port_), login_, password_, QStringLiteral("estate"),
                              QStringLiteral("--sqlite"), embedded}) == 0;
}

bool BabelfishServer::restart() const {
    QProcess script;
    script.start(QStringLiteral("bash"),
                 {qEnvironmentVariable("QIVO_BABELFISH_SCRIPTS") + "/babelfish.sh",
                  QStringLiteral("restart"), state_});
    return script.waitForFinished(120000) && script.exitCode() == 0;
}

QString BabelfishServer::log() const {
    QFile file(QDir(home_).filePath(QStringLiteral("data/server.log")));
    file.open(QIODevice::ReadOnly);
    return QString::fromUtf8(file.readAll());
}

}  // namespace qivo::test
