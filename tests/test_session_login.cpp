// Signing in as staff do: typed credentials, post choice, the built-in user and a session
// handed over on the command line.
#include <QApplication>
#include <QLabel>
#include <QListWidget>
#include <QProcess>
#include <QPushButton>
#include <memory>

#include "runtime/runtime_error.h"
#include "runtime/settings.h"
#include "session/command_line.h"
#include "session/connection.h"
#include "session/login_form.h"
#include "session/main_screen.h"
#include "session/session_values.h"
#include "support/account_fixture.h"
#include "support/test_support.h"
#include "widgets/text_box.h"

using namespace qivo;

namespace {

struct SignIn {
    test::MsgBoxRecorder boxes;
    test::EndRecorder ends;
    int mainScreens = 0;
    frmLogin form;

    SignIn() {
        showMainScreen = [this] { ++mainScreens; };
        form.Show();
    }
    ~SignIn() { showMainScreen = nullptr; }

    void press(const QString& user, const QString& password) {
        form.TxtUser->setText(user);
        form.txtPassword->setText(password);
        QTest::mouseClick(form.cmdOK, Qt::LeftButton);
    }
};

void resetSession() {
    for (QString* value : {&CurrentUserId, &CurrentUserName, &CurrentDeptName, &CurrentPostName}) {
        value->clear();
    }
    setCommand({});
}

}  // namespace

class LoginTest final : public QObject {
    Q_OBJECT
    std::unique_ptr<test::FixtureDb> db;

  private Q_SLOTS:
    void init() {
        resetSession();
        db = std::make_unique<test::FixtureDb>();
        test::writeStaff(*db);
    }
    void cleanup() { db.reset(); }

    void refusals_data() {
        QTest::addColumn<QString>("user");
        QTest::addColumn<QString>("password");
        QTest::addColumn<QString>("message");
        QTest::addColumn<int>("style");
        const auto row = [](const char* name, const char* user, const char* password,
                            const char* message, int style) {
            QTest::newRow(name) << QString(user) << QString(password) << QString(message) << style;
        };
        const char* wrong = "用户名或密码不正确,请重新输入!";
        const char* noPost = "对不起，您没有岗位，请选择系统管理员";
        row("no user", "", "pw", "用户名不能为空!", 64);
        row("no password", "1001", "", "密码不能为空!", 64);
        row("wrong password", "1001", "PX", wrong, 64);
        row("left", "1003", "pw", noPost, 0);
        row("posts ended", "1004", "pw", noPost, 0);
        row("super-user password untrimmed", "qd", " qorvelantism7315", wrong, 64);
    }
    void refusals() {
        QFETCH(QString, user);
        QFETCH(QString, password);
        QFETCH(QString, message);
        QFETCH(int, style);
        SignIn signIn;
        signIn.press(user, password);
        QCOMPARE(signIn.boxes.prompts(), QStringList{message});
        QCOMPARE(signIn.boxes.messages[0].style, style);
        QCOMPARE(signIn.boxes.messages[0].title, QString("Qivo账号审核"));
        QCOMPARE(signIn.mainScreens, 0);
        QVERIFY(CurrentUserId.isEmpty());
        QVERIFY(signIn.form.isLoaded());
    }

    // Enter after the user, Enter after the password, Enter on 登录: signed in by keyboard alone,
    // at once with the only post.
    void onePostSignsInByKeyboard() {
        SignIn signIn;
        QVERIFY(QTest::qWaitForWindowActive(&signIn.form));
        signIn.form.TxtUser->editor()->setFocus();
        QTest::keyClicks(QApplication::focusWidget(), "1001");
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
        QTest::keyClicks(QApplication::focusWidget(), "  pw ");  // trimmed for the check
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
        QCOMPARE(QApplication::focusWidget(), signIn.form.cmdOK);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
        QVERIFY(signIn.boxes.messages.isEmpty());
        QCOMPARE(signIn.mainScreens, 1);
        QVERIFY(!signIn.form.isLoaded());
        QCOMPARE(CurrentUserId, QString("1001"));
        QCOMPARE(CurrentUserName, QString("王丽"));
        QCOMPARE(CurrentDeptName, QString("客服中心"));
        QCOMPARE(CurrentPostName, QString("客服主管"));
        QCOMPARE(CurrentPostCategoryName, QString("管理岗"));
        QCOMPARE(CurrentDeptCategoryId, QString("C1"));
    }

    void twoPostsAreChosenInTheList() {
        SignIn signIn;
        signIn.press("1002", "pw");
        QCOMPARE(signIn.mainScreens, 0);
        QVERIFY(signIn.form.List1->isVisibleTo(&signIn.form));
        QVERIFY(signIn.form.Label2->isVisibleTo(&signIn.form));
        QStringList items;
        for (int i = 0; i < signIn.form.List1->count(); ++i) {
            items << signIn.form.List1->item(i)->text();
        }
        items.sort();
        QCOMPARE(items, QStringList({"客服中心 客服主管(主要)", "工程部 维修员 (兼职)"}));
        const int second = signIn.form.List1->row(
            signIn.form.List1->findItems("工程部", Qt::MatchStartsWith).first());
        signIn.form.List1->setCurrentRow(second);
        QTest::keyClick(signIn.form.List1, Qt::Key_Return);  // as a double-click
        QCOMPARE(signIn.mainScreens, 1);
        QCOMPARE(CurrentPostName, QString("维修员"));
        QCOMPARE(CurrentUserName, QString("李强"));
        // Focusing the user box again goes back to entering credentials.
        signIn.form.Show();
        signIn.form.TxtUser_GotFocus();
        QVERIFY(!signIn.form.List1->isVisibleTo(&signIn.form));
    }

    void builtInUserKeepsTheEarlierName() {
        CurrentUserName = "前一位";
        CurrentDeptName = "旧部门";
        SignIn signIn;
        signIn.press("qd", "qorvelantism7315");
        QCOMPARE(CurrentUserId, QString("超级用户"));
        QCOMPARE(CurrentUserName, QString("前一位"));
        QVERIFY(CurrentDeptName.isEmpty());
        QCOMPARE(signIn.mainScreens, 1);
        QVERIFY(signIn.form.isLoaded());  // the sign-in form stays loaded behind
    }

    void failedConnectionEndsTheProgram() {
        runtime::SaveSetting("Merivane", "DBConfig", "Svr", "sqlite:/nonexistent.db");
        SignIn signIn;
        signIn.press("1001", "pw");
        QCOMPARE(signIn.boxes.messages.size(), 2);
        QCOMPARE(signIn.boxes.messages[1].prompt, QString("数据库连接失败!"));
        QCOMPARE(signIn.ends.count, 1);

        // No server in the settings: one message that says where they are read from.
        runtime::SaveSetting("Merivane", "DBConfig", "Svr", "");
        signIn.boxes.messages.clear();
        signIn.press("1001", "pw");
        QCOMPARE(signIn.boxes.messages.size(), 1);
        const QString told = signIn.boxes.messages[0].prompt;
        for (const QString& part :
             {runtime::settingsLocation("Merivane", "DBConfig"), QString("Svr"), QString("UID"),
              QString("PWD"), QString("DBname"), QString("qivo-review --check"),
              QString("qivo-demo-db")}) {
            QVERIFY2(told.contains(part), qPrintable(part));
        }
        QCOMPARE(signIn.ends.count, 2);
    }

    void commandLineStart() {
        setCommand("2001,周敏,D1,客服中心,P1,客服主管,C1,管理部门,K1,管理岗,extra");
        {
            SignIn signIn;
            QCOMPARE(signIn.mainScreens, 1);
            QVERIFY(!signIn.form.isLoaded());
            QCOMPARE(CurrentUserId, QString("2001"));
            QCOMPARE(CurrentPostCategoryName, QString("管理岗"));
            QVERIFY(Connection::cn().isOpen());
        }
        // A failing connection leaves the sign-in form open for an interactive sign-in.
        runtime::SaveSetting("Merivane", "DBConfig", "Svr", "sqlite:/nonexistent.db");
        SignIn signIn;
        QCOMPARE(signIn.mainScreens, 0);
        QCOMPARE(signIn.boxes.messages.size(), 2);
        QVERIFY(signIn.form.isVisible());

        QCOMPARE(test::errorOf([] { commandLineFields("1,2,3,4,5,6,7,8,9"); }).number(),
                 runtime::err::SubscriptOutOfRange);
    }

    // The session text as the calling program passed it: on Windows the command line after the
    // program's name with its quotes and blanks, elsewhere the arguments joined by one blank.
    void sessionTextAsPassed() {
        QCOMPARE(afterProgramName(R"("C:\Program Files\Qivo账号审核\q.exe"  "1001,王丽"  x)"),
                 QString(R"("1001,王丽"  x)"));
        QCOMPARE(afterProgramName("q.exe\t 1001,王丽, ,x "), QString("1001,王丽, ,x "));
        QCOMPARE(afterProgramName(R"("q.exe")") + afterProgramName("q.exe"), QString());
        QProcess process;
#ifdef Q_OS_WIN
        const QString expected = R"("1001,王 丽"  ,KF,"客服""中心" )";
        process.setNativeArguments(expected);
        process.start(qEnvironmentVariable("QIVO_SESSION_TEXT"), {});
#else
        const QString expected = "1001,王 丽  ,KF";
        process.start(qEnvironmentVariable("QIVO_SESSION_TEXT"), {"1001,王 丽", "", ",KF"});
#endif
        QVERIFY(process.waitForFinished(20000));
        QCOMPARE(QString::fromUtf8(process.readAllStandardOutput()), expected);
    }
};

QIVO_TEST_MAIN(LoginTest)
#include "test_session_login.moc"
