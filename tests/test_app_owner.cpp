#include <QApplication>
#include <QBuffer>
#include <QProcess>
#include <QProcessEnvironment>
#include <QTemporaryDir>

#include "owner/owner_form.h"
#include "owner/owner_opener.h"
#include "runtime/end.h"
#include "runtime/settings.h"
#include "support/test_support.h"

using namespace qivo;

// The owner screen as another program opens it. The screen stays open until a
// user closes it, which a test process cannot do from outside, so the full
// round trip runs in process through the same opener the program uses; the
// program itself is run for what ends without a window.
class TestAppOwner final : public QObject {
    Q_OBJECT

    // Opens the screen from the given options and closes it as the user would.
    static QByteArray runScreen(QStringList& arguments,
                                const std::function<void(frm业户信息&)>& use) {
        auto* keyOut = new QBuffer;
        keyOut->open(QIODevice::WriteOnly);
        auto launch = OwnerLaunch::fromArguments(arguments, std::unique_ptr<QIODevice>(keyOut));
        if (launch == nullptr || launch->screen() == nullptr) {
            return "no screen";
        }
        frm业户信息& screen = *launch->screen();
        if (!QTest::qWaitForWindowActive(&screen)) {
            return "not shown";
        }
        use(screen);
        QTest::mouseClick(screen.Command2, Qt::LeftButton);
        return keyOut->data();
    }

  private Q_SLOTS:
    // On close the screen hands back a stored owner's key, a new owner's key once saved, and
    // nothing for a new owner closed unsaved; its options leave the command line.
    void screenHandsBackTheOwnersKey() {
        test::FixtureDb db;
        db.exec("insert into 业主表 (ZH_ID, S_ID, 姓名) values (4, 1, '周九')");
        db.exec("insert into 室表 (S_ID, 室) values (31, '101'), (32, '102')");
        QString shownName;
        QStringList arguments{"qivo-review", "a,b", "--owner", "4"};
        QCOMPARE(
            runScreen(arguments, [&](frm业户信息& screen) { shownName = screen.Text2[0]->text(); }),
            QByteArray("ZH_ID=4\n"));
        QCOMPARE(shownName, QString("周九"));
        QCOMPARE(arguments, QStringList({"qivo-review", "a,b"}));

        arguments = QStringList{"qivo-review", "--new-owner", "31"};
        const QByteArray out = runScreen(arguments, [](frm业户信息& screen) {
            screen.Text2[0]->setText("吴十");
            QTest::mouseClick(screen.Command3, Qt::LeftButton);
        });
        const QString key = db.scalar("select ZH_ID from 业主表 where S_ID=31").toString();
        QVERIFY(!key.isEmpty());
        QCOMPARE(out, ("ZH_ID=" + key + "\n").toUtf8());
        arguments = QStringList{"qivo-review", "--new-owner", "32"};
        QCOMPARE(runScreen(arguments, [](frm业户信息&) {}), QByteArray());
    }

    void noDatabaseEnds() {
        QTemporaryDir dir;
        runtime::SaveSetting("Merivane", "DBConfig", "Svr", "sqlite:" + dir.filePath("gone.db"));
        test::MsgBoxRecorder boxes;
        test::EndRecorder end;
        QStringList arguments{"qivo-review", "--owner", "4"};
        auto launch = OwnerLaunch::fromArguments(arguments, std::make_unique<QBuffer>());
        QVERIFY(launch != nullptr);
        QVERIFY(launch->screen() == nullptr);
        QCOMPARE(boxes.prompts().size(), 2);
        QCOMPARE(boxes.prompts().last(), QString("数据库连接失败!"));
        QCOMPARE(end.count, 1);
    }

    // --help and --version answer on standard output; an unknown option is refused with the
    // usage instead of being taken for a session; an owner key that is missing, no number or not
    // in 业主表, or a room not in 室表, is refused on standard error. Only --version leaves the
    // settings unnamed.
    void programOptions_data() {
        QTest::addColumn<QStringList>("options");
        QTest::addColumn<int>("status");
        QTest::addColumn<QString>("out");
        QTest::addColumn<QString>("err");
        QTest::addColumn<bool>("namesSettings");
        const auto row = [](const char* name, const QStringList& options, int status,
                            const char* out, const char* err, bool namesSettings) {
            QTest::newRow(name) << options << status << QString(out) << QString(err)
                                << namesSettings;
        };
        row("help", {"1001,王丽", "--help"}, 0, "--new-owner S_ID", "", true);
        row("-h", {"-h"}, 0, "--new-owner S_ID", "", true);
        row("version", {"1001,王丽", "--version"}, 0, "1.0\n", "", false);
        row("-v", {"-v"}, 0, "1.0\n", "", false);
        row("unknown", {"1001,王丽", "--bogus"}, 2, "", "未知选项 --bogus", true);
        row("no value", {"--owner"}, 2, "", "--owner", false);
        row("not a number", {"--new-owner", "12;drop"}, 2, "", "--new-owner", false);
        row("no owner row", {"--owner", "77"}, 2, "", "业主表中没有编号为 77 的业主", false);
        row("no room row", {"--new-owner", "0"}, 2, "", "室表中没有编号为 0 的房间", false);
    }
    void programOptions() {
        QFETCH(QStringList, options);
        QFETCH(int, status);
        QFETCH(QString, out);
        QFETCH(QString, err);
        QFETCH(bool, namesSettings);
        const QString program = qEnvironmentVariable("QIVO_REVIEW");
        if (!QFile::exists(program)) {
            QSKIP("the program qivo-review is not built");
        }
        test::FixtureDb db;  // the program reads its settings from this suite's store
        QProcess process;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("QT_QPA_PLATFORM", "offscreen");
        process.setProcessEnvironment(environment);
        process.start(program, options);
        QVERIFY(process.waitForFinished(10000));
        QCOMPARE(process.exitCode(), status);
        // Line ends as the system writes them (CR LF on Windows).
        const QString shown = QString::fromUtf8(process.readAllStandardOutput()).remove(u'\r');
        const QString refused = QString::fromUtf8(process.readAllStandardError()).remove(u'\r');
        QVERIFY2(out.isEmpty() ? shown.isEmpty() : shown.contains(out), qPrintable(shown));
        QVERIFY2(err.isEmpty() ? refused.isEmpty() : refused.contains(err), qPrintable(refused));
        QCOMPARE((shown + refused).contains(runtime::settingsLocation("Merivane", "DBConfig")),
                 namesSettings);
    }

    void cleanup() { QVERIFY(QApplication::topLevelWidgets().isEmpty()); }
};

QIVO_TEST_MAIN(TestAppOwner)
#include "test_app_owner.moc"
