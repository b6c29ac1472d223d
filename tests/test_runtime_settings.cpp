// The connection settings as the estate system's other programs write them into the registry,
// or elsewhere as an administrator writes them by hand.
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include "runtime/settings.h"
#include "support/test_support.h"

#ifdef Q_OS_WIN
#include <windows.h>
#endif

using namespace qivo;

namespace {

const QString kApp = QStringLiteral("Merivane");
const QString kSection = QStringLiteral("DBConfig");

#ifdef Q_OS_WIN

const wchar_t* wide(const QString& text) {
    return reinterpret_cast<const wchar_t*>(text.utf16());
}

// The suite's own key, as runtime::settingsLocation names it, under HKEY_CURRENT_USER.
QString subKey(const QString& section) {
    return runtime::settingsLocation(kApp, section).section(u'\\', 1);
}

// A value as another program writes it, and reads it back, through the registry API alone.
void writeRaw(const QString& section, const QString& key, const QString& value) {
    QCOMPARE(RegSetKeyValueW(HKEY_CURRENT_USER, wide(subKey(section)), wide(key), REG_SZ,
                             wide(value), DWORD((value.size() + 1) * sizeof(wchar_t))),
             ERROR_SUCCESS);
}
QString readRaw(const QString& key) {
    wchar_t buffer[256];
    DWORD bytes = sizeof buffer;
    return RegGetValueW(HKEY_CURRENT_USER, wide(subKey(kSection)), wide(key), RRF_RT_REG_SZ,
                        nullptr, buffer, &bytes) == ERROR_SUCCESS
               ? QString::fromWCharArray(buffer)
               : QString();
}

}  // namespace

class SettingsTest final : public QObject {
    Q_OBJECT

  private Q_SLOTS:
    // Values come back exactly as written, however they look; key names in any case; the store
    // is the key the estate system writes, here under the suite's own root.
    void registryValuesReadAndWrittenExactly_data() {
        QTest::addColumn<QString>("value");
        for (const char* value : {"dbserver,1433", "dbserver\\SQLEXPRESS", "10.0.0.5\\INST,1500",
                                  "p;w=x\"y'", "  a b  ", "@@p", "@Invalid()", "物业数据库", ""}) {
            QTest::newRow(value) << QString::fromUtf8(value);
        }
    }
    void registryValuesReadAndWrittenExactly() {
        QFETCH(QString, value);
        writeRaw(kSection, "PWD", value);
        QCOMPARE(runtime::GetSetting(kApp, kSection, "pwd"), value);
        runtime::SaveSetting(kApp, kSection, "Svr", value);
        QCOMPARE(readRaw("Svr"), value);
        QVERIFY(runtime::settingsLocation(kApp, kSection)
                    .startsWith("HKEY_CURRENT_USER\\Software\\Qivo tests\\"));
        QVERIFY(runtime::settingsLocation(kApp, kSection).endsWith("\\Merivane\\DBConfig"));
    }

    void missingKeysReadEmpty() {
        writeRaw("Other", "UID", "sa");
        QCOMPARE(runtime::GetSetting(kApp, kSection, "UID"), QString());
        QCOMPARE(runtime::GetSetting(kApp, "Absent", "Svr"), QString());
        QCOMPARE(runtime::GetSetting(kApp, "Other", "UID"), QString("sa"));
    }
};

#else

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

#endif

QIVO_TEST_MAIN(SettingsTest)
#include "test_runtime_settings.moc"
