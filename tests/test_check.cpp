// qivo-review --check: what an administrator runs on a new workstation.
#include <QElapsedTimer>
#include <QProcess>
#include <QProcessEnvironment>
#include <QScopeGuard>
#include <QTemporaryDir>
#include <QTextStream>

#include "check/workstation_check.h"
#include "runtime/settings.h"
#include "support/odbc_fixture.h"
#include "support/test_support.h"

using namespace qivo;

class CheckTest final : public QObject {
    Q_OBJECT

  private Q_SLOTS:
    // A fresh demo database, checked by the program itself with no display and no sign-in.
    void demoDatabasePassesWithoutDisplay() {
        QTemporaryDir dir;
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();  // this suite's store
        env.remove("QT_QPA_PLATFORM");
        env.remove("DISPLAY");
        QProcess demo;
        demo.setProcessEnvironment(env);
        demo.start(qEnvironmentVariable("QIVO_DEMO_DB"), {"--out", dir.filePath("demo.db")});
        QVERIFY(demo.waitForFinished(60000));
        QCOMPARE(demo.exitCode(), 0);

        QProcess check;
        check.setProcessEnvironment(env);
        check.start(qEnvironmentVariable("QIVO_REVIEW"), {"--check"});
        QVERIFY(check.waitForFinished(60000));
        const QString report = QString::fromUtf8(check.readAllStandardOutput());
        QCOMPARE(check.exitCode(), 0);
        QCOMPARE(report.count("✓ "), 14);  // connection, 12 tables, summary
        QVERIFY(!report.contains("✗"));
        QVERIFY(report.contains(runtime::settingsLocation("Merivane", "DBConfig")));
    }

    // Without a server in the settings nothing is tried: the report says so and where to set it.
    void noServerIsToldWithoutConnecting() {
        runtime::SaveSetting("Merivane", "DBConfig", "Svr", "");
        QString report;
        QTextStream out(&report);
        QCOMPARE(check::checkWorkstation(out), int(check::NoConnection));
        QVERIFY2(report.contains("结果       ✗ Svr 未设置"), qPrintable(report));
        QVERIFY(report.contains("四项设置：Svr"));
    }

    void faultsAreNamed_data() {
        QTest::addColumn<QString>("damage");
        QTest::addColumn<QString>("server");
        QTest::addColumn<QString>("driver");
        QTest::addColumn<int>("status");
        QTest::addColumn<QStringList>("named");
        QTest::newRow("column dropped, table renamed")
            << "alter table 业主表 drop column 短信; alter table 室表 rename to 房间表"
            << ""
            << "" << int(check::SomethingMissing)
            << QStringList{"✗ 业主表：缺少 业主表.短信", "✗ 室表：表无法读取", "✓ 业户互联网",
                           "缺少 2 处：室表、业主表.短信"};
        QTest::newRow("orphan owner registration")
            << "insert into 业户互联网 (ZH_ID, 属性) values (99, '业主')"
            << ""
            << "" << int(check::AllPresent)
            << QStringList{"警告：1 条业主登记", "✓ 程序使用的每张表和每一列都在"};
        // The server as each driver is given it.
        QTest::newRow("unreachable server, FreeTDS")
            << ""
            << "127.0.0.1,1"
            << "FreeTDS" << int(check::NoConnection)
            << QStringList{"SERVER=127.0.0.1;Port=1;", "连接       ✗ ["};
        QTest::newRow("unreachable server, Microsoft driver")
            << ""
            << "127.0.0.1,1"
            << "ODBC Driver 17 for SQL Server" << int(check::NoConnection)
            << QStringList{"{ODBC Driver 17 for SQL Server};SERVER=127.0.0.1,1;", "连接       ✗ ["};
    }
    void faultsAreNamed() {
        QFETCH(QString, damage);
        QFETCH(QString, server);
        QFETCH(QString, driver);
        QFETCH(int, status);
        QFETCH(QStringList, named);
        const QByteArray chosen = qgetenv("QIVO_ODBC_DRIVER");
        const auto restore = qScopeGuard([&] { qputenv("QIVO_ODBC_DRIVER", chosen); });
        qputenv("QIVO_ODBC_DRIVER", driver.toUtf8());
        test::FixtureDb db;
        if (!damage.isEmpty()) {
            db.exec(damage);
        }
        if (!server.isEmpty()) {
            runtime::SaveSetting("Merivane", "DBConfig", "Svr", server);
        }
        QString report;
        QTextStream out(&report);
        QElapsedTimer timer;
        timer.start();
        QCOMPARE(check::checkWorkstation(out), status);
        QVERIFY(timer.elapsed() < 30000);  // within the login time-out
        for (const QString& text : named) {
            QVERIFY2(report.contains(text), qPrintable(report));
        }
    }

    // Over FreeTDS to the stand-in SQL Server, under a login that reads dates day first: every
    // probe passes, and a server that keeps what a rolled-back transaction wrote is caught by the
    // probe that saves inside one.
    void serverProbes_data() {
        QTest::addColumn<bool>("rollbackKeeps");
        QTest::addColumn<int>("status");
        QTest::addColumn<QStringList>("named");
        QTest::newRow("sound server")
            << false << int(check::AllPresent)
            << QStringList{"✓ 未读完的记录集旁再查询：第一个查询读到 2 行",
                           "✓ 中文往返",
                           "业主表.说明 nvarchar(10)",
                           "业主表 自增列 ZH_ID，触发器 无",
                           "✓ 保存与终止（回滚）",
                           "✓ 登录语言和日期格式：语言 简体中文（登录的默认语言 简体中文）",
                           "✓ 失败命令后的连接：已回到自动提交",
                           "✓ 程序使用的每张表和每一列都在"};
        QTest::newRow("rollback keeps writes")
            << true << int(check::SomethingMissing)
            << QStringList{"✗ 保存与终止（回滚）：回滚后仍留下业主 1 行、成员 1 行", "✓ 权限",
                           "SQL Server 检查未全部通过"};
    }
    void serverProbes() {
        QFETCH(bool, rollbackKeeps);
        QFETCH(int, status);
        QFETCH(QStringList, named);
        QVERIFY(test::useFreeTds());
        test::OdbcFixture odbc([](test::FixtureDb& db) {
            db.exec("insert into 业主表 (ZH_ID, 姓名) values (1, '欧阳建国')");
            db.exec("insert into 业户互联网 (ZH_ID, 属性) values (1, '业主'), (1, '成员')");
        });
        odbc.server().setDayFirstLogins(true);
        odbc.server().setDefaultLanguage("简体中文");
        odbc.server().setRollbackKeepsWrites(rollbackKeeps);
        QString report;
        QTextStream out(&report);
        QCOMPARE(check::checkWorkstation(out), status);
        for (const QString& text : named) {
            QVERIFY2(report.contains(text), qPrintable(report));
        }
        QCOMPARE(report.count("✗"), rollbackKeeps ? 2 : 0);
        QCOMPARE(odbc.db.count("select count(*) from 业主表"), rollbackKeeps ? 2 : 1);
    }
};

QIVO_TEST_MAIN(CheckTest)
#include "test_check.moc"
