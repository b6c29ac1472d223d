// Signing in as staff do: typed credentials, post choice, the built-in user and a session
// handed over on the command line.
#include <QApplication>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>

#include "platform/runtime_error.h"
#include "platform/settings.h"
#include "platform/text_box.h"
#include "session/command_line.h"
#include "session/connection.h"
#include "session/login_form.h"
#include "session/main_screen.h"
#include "session/session_values.h"
#include "support/test_support.h"

using namespace qivo;

namespace {

// 1001 holds one post, 1002 two (main and second), 1003 has left, 1004's post has ended.
void seedStaff(test::FixtureDb& db) {
    db.exec(
        "insert into 职能部门类别 values ('C1', '管理部门');"
        "insert into 职能部门new values ('D1', '客服中心', 'C1'), ('D2', '工程部', 'C1');"
        "insert into 岗位类别 values ('K1', '管理岗');"
        "insert into 岗位信息new values ('P1', '客服主管', 'D1', 'K1'),"
        " ('P2', '维修员 ', 'D2', 'K1');"
        "insert into 员工档案 (工号, 帐号密码, 姓名, 离职日期) values"
        " ('1001', 'pw', ' 王丽 ', null), ('1002', 'pw', '李强', null),"
        " ('1003', 'pw', '赵敏', '2024-01-31'), ('1004', 'pw', '孙杰', null);"
        "insert into 岗位员工new values ('1001', 'P1', 1, null), ('1002', 'P1', 1, null),"
        " ('1002', 'P2', 0, null), ('1003', 'P1', 1, null), ('1004', 'P1', 1, '2024-05-01')");
}

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

  private Q_SLOTS:
    void init() { resetSession(); }

    void refusals_data() {
        QTest::addColumn<QString>("user");
        QTest::addColumn<QString>("password");
        QTest::addColumn<QString>("message");
        QTest::addColumn<int>("style");
        QTest::newRow("no user") << ""
                                 << "pw"
                                 << "用户名不能为空!" << 64;
        QTest::newRow("no password") << "1001"
                                     << ""
                                     << "密码不能为空!" << 64;
        QTest::newRow("wrong password") << "1001"
                                        << "PX"
                                        << "用户名或密码不正确,请重新输入!" << 64;
        QTest::newRow("left") << "1003"
                              << "pw"
                              << "对不起，您没有岗位，请选择系统管理员" << 0;
        QTest::newRow("posts ended") << "1004"
                                     << "pw"
                                     << "对不起，您没有岗位，请选择系统管理员" << 0;
        QTest::newRow("quote in the user") << "' or 1=1 --"
                                           << "x"
                                           << "用户名或密码不正确,请重新输入!" << 64;
        QTest::newRow("super-user password untrimmed") << "qd"
                                                       << " qorvelantism7315"
                                                       << "用户名或密码不正确,请重新输入!" << 64;
    }
    void refusals() {
        QFETCH(QString, user);
        QFETCH(QString, password);
        QFETCH(QString, message);
        QFETCH(int, style);
        test::FixtureDb db;
        seedStaff(db);
        SignIn signIn;
        signIn.press(user, password);
        QCOMPARE(signIn.boxes.prompts(), QStringList{message});
        QCOMPARE(signIn.boxes.messages[0].style, style);
        QCOMPARE(signIn.boxes.messages[0].title, QString("Qivo账号审核"));
        QCOMPARE(signIn.mainScreens, 0);
        QVERIFY(CurrentUserId.isEmpty());
        QVERIFY(signIn.form.isLoaded());
    }

    void onePostSignsInAtOnce() {
        test::FixtureDb db;
        seedStaff(db);
        SignIn signIn;
        signIn.press("1001", "  pw ");  // blanks around the password are trimmed for the check
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

    // Enter after the user, Enter after the password, Enter on 登录: signed in by keyboard alone.
    void keyboardOnlySignIn() {
        test::FixtureDb db;
        seedStaff(db);
        SignIn signIn;
        QVERIFY(QTest::qWaitForWindowActive(&signIn.form));
        signIn.form.TxtUser->editor()->setFocus();
        QTest::keyClicks(QApplication::focusWidget(), "1001");
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
        QTest::keyClicks(QApplication::focusWidget(), "pw");
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
        QCOMPARE(QApplication::focusWidget(), signIn.form.cmdOK);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
        QCOMPARE(signIn.mainScreens, 1);
    }

    void twoPostsAreChosenInTheList() {
        test::FixtureDb db;
        seedStaff(db);
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
        test::FixtureDb db;
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
        test::FixtureDb db;
        platform::SaveSetting("Merivane", "DBConfig", "Svr", "sqlite:/nonexistent.db");
        SignIn signIn;
        signIn.press("1001", "pw");
        QCOMPARE(signIn.boxes.messages.size(), 2);
        QCOMPARE(signIn.boxes.messages[1].prompt, QString("数据库连接失败!"));
        QCOMPARE(signIn.ends.count, 1);
    }

    void commandLineStart() {
        test::FixtureDb db;
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
        platform::SaveSetting("Merivane", "DBConfig", "Svr", "sqlite:/nonexistent.db");
        SignIn signIn;
        QCOMPARE(signIn.mainScreens, 0);
        QCOMPARE(signIn.boxes.messages.size(), 2);
        QVERIFY(signIn.form.isVisible());
        QVERIFY(signIn.form.Label1->text().startsWith("V"));
        QVERIFY(signIn.form.Label1->text().endsWith("版"));

        try {
            commandLineFields("1,2,3,4,5,6,7,8,9");
            QFAIL("nine fields accepted");
        } catch (const platform::RuntimeError& error) {
            QCOMPARE(error.number(), platform::err::SubscriptOutOfRange);
        }
    }
};

QIVO_TEST_MAIN(LoginTest)
#include "test_session_login.moc"
