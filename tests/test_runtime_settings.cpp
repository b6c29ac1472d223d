// The connection settings as an administrator writes them by hand.
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include "runtime/settings.h"
#include "support/test_support.h"

using namespace qivo;

namespace {

const QString kApp = QStringLiteral("Merivane");
const QString kSection = QStringLiteral("DBConfig");

// Points the settings store at a fresh directory for the life of the object.
class SettingsHome {
  public:
    SettingsHome() : saved_(qgetenv("XDG_CONFIG_HOME")) {
        qputenv("XDG_CONFIG_HOME", dir_.path().toUtf8());
    }
    ~SettingsHome() { qputenv("XDG_CONFIG_HOME", saved_); }
    QString iniPath() const { return dir_.filePath("Merivane/Merivane.ini"); }
    void write(const QByteArray& content) const {
        QDir(dir_.path()).mkpath("Merivane");
        QFile ini(iniPath());
        QVERIFY(ini.open(QIODevice::WriteOnly));
        ini.write(content);
    }
    QByteArray read() const {
        QFile ini(iniPath());
        return ini.open(QIODevice::ReadOnly) ? ini.readAll() : QByteArray();
    }

  private:
    QTemporaryDir dir_;
    QByteArray saved_;
};

}  // namespace

class SettingsTest final : public QObject {
    Q_OBJECT

  private Q_SLOTS:
    void valuesReadAsWritten_data() {
        QTest::addColumn<QByteArray>("ini");
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("value");
        const auto row = [](const char* name, const QByteArray& line, const char* key,
                            const QString& value) {
            QTest::newRow(name) << "[DBConfig]\n" + line + "\nDBname=estate\n" << key << value;
        };
        row("host,port", "Svr=dbserver,1433", "Svr", "dbserver,1433");
        row("named instance", "Svr=dbserver\\SQLEXPRESS", "Svr", "dbserver\\SQLEXPRESS");
        row("address, instance and port", "Svr=10.0.0.5\\INST,1500", "Svr", "10.0.0.5\\INST,1500");
        row("separators and quotes", "PWD=p;w=x\"y'", "PWD", "p;w=x\"y'");
        row("outer blanks kept", "UID=  a b  ", "UID", "  a b  ");
        row("missing key", "UID=sa", "PWD", "");
        row("empty value", "PWD=", "PWD", "");
        row("UTF-8 name", "DBname=物业数据库", "dbname", "物业数据库");
        QTest::newRow("BOM, CRLF, key case")
            << QByteArray("\xEF\xBB\xBF[dbconfig]\r\nSVR=dbserver,1433\r\nUID=sa\r\n") << "Svr"
            << "dbserver,1433";
        QTest::newRow("other section")
            << QByteArray("[Other]\nSvr=x\n[DBConfig]\nUID=sa\n") << "Svr"
            << "";
    }
    void valuesReadAsWritten() {
        QFETCH(QByteArray, ini);
        QFETCH(QString, key);
        QFETCH(QString, value);
        SettingsHome home;
        home.write(ini);
        QCOMPARE(runtime::GetSetting(kApp, kSection, key), value);
        QCOMPARE(runtime::settingsLocation(kApp, kSection), home.iniPath());
    }

    // The demo tool writes into a hand-written file: its own keys change, the rest stays as typed.
    void savingKeepsWhatAdministratorsWrote() {
        SettingsHome home;
        runtime::SaveSetting(kApp, kSection, "Svr", "sqlite:/tmp/物业 1.db");
        QCOMPARE(home.read(), QByteArray("[DBConfig]\nSvr=sqlite:/tmp/物业 1.db\n"));

        home.write(
            "\xEF\xBB\xBF; estate\r\n[DBConfig]\r\nsvr=old\r\nPWD=p;w\r\n\r\n[Other]\r\nA=1");
        runtime::SaveSetting(kApp, kSection, "Svr", "sqlite:/tmp/demo.db");
        runtime::SaveSetting(kApp, kSection, "DBname", "qivo_demo");
        runtime::SaveSetting(kApp, "New", "UID", "");
        QCOMPARE(home.read(), QByteArray("\xEF\xBB\xBF; estate\r\n[DBConfig]\r\nSvr=sqlite:/tmp/"
                                         "demo.db\r\nPWD=p;w\r\nDBname=qivo_demo\r\n\r\n[Other]"
                                         "\r\nA=1\r\n[New]\r\nUID=\r\n"));
        QCOMPARE(runtime::GetSetting(kApp, kSection, "PWD"), QString("p;w"));
    }
};

QIVO_TEST_MAIN(SettingsTest)
#include "test_runtime_settings.moc"
