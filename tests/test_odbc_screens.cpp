// The screens on SQL Server: sign-in, review, register and owner flows through FreeTDS's ODBC
// driver to the stand-in server.
#include <QApplication>
#include <QElapsedTimer>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QTimer>
#include <memory>

#include "owner/owner_form.h"
#include "register/register_form.h"
#include "review/review_form.h"
#include "session/connection.h"
#include "session/login_form.h"
#include "session/main_screen.h"
#include "session/session_values.h"
#include "support/account_fixture.h"
#include "support/grid_actions.h"
#include "support/odbc_fixture.h"
#include "widgets/wait_dialog.h"

using namespace qivo;

namespace {

// Registrations 101 (pending, a name filling its varchar column, a Qivo号 outside GBK), 102
// (pending), 201 (approved) with member accounts 211 and 212 in the same household.
void seedAccounts(test::FixtureDb& db) {
    test::writeEstates(db);
    db.exec(QString::fromUtf8(
        "insert into 业户互联网 (HLWID, ZH_ID, Qivo号, 姓名, 身份证, 手机, 属性, 审核人, 审核日期) "
        "values (101, 1, 'qv\u4DAE101', '欧阳建国', '330101', '13900000001', '业主', null, null),"
        "(102, 3, 'qv102', '张伟', null, null, '业主', null, null),"
        "(201, 2, 'qv201', '李娜', '330102', null, '业主', '王丽', '2024-01-02'),"
        "(211, 2, 'qv211', '李四', null, null, '家属', '王丽', '2024-02-01'),"
        "(212, 2, 'qv212', '王五', null, null, '家属', '王丽', '2024-02-01')"));
}

}  // namespace

// Presses 取消 in every statement wait that appears, noting its text.
void cancelEveryWait(QTimer& presser, QStringList& waits) {
    presser.callOnTimeout([&waits] {
        for (QWidget* window : QApplication::topLevelWidgets()) {
            auto* wait = dynamic_cast<widgets::WaitDialog*>(window);
            if (wait && wait->isVisible() && wait->cmdCancel->isEnabled()) {
                waits << wait->Label1->text();
                QTest::mouseClick(wait->cmdCancel, Qt::LeftButton);
            }
        }
    });
    presser.start(50);
}

class OdbcScreensTest final : public QObject {
    Q_OBJECT

  private Q_SLOTS:
    void initTestCase() { QVERIFY(test::useFreeTds()); }

    // The staff row is still open when the posts are read.
    void signInWithOneAndTwoPosts() {
        test::OdbcFixture odbc(test::writeStaff);
        test::MsgBoxRecorder boxes;
        int mainScreens = 0;
        showMainScreen = [&mainScreens] { ++mainScreens; };
        frmLogin form;
        const auto signIn = [&form](const char* user) {
            form.Show();
            form.TxtUser->setText(user);
            form.txtPassword->setText("pw");
            form.cmdOK->click();
        };
        signIn("1001");
        QCOMPARE(mainScreens, 1);
        QCOMPARE(CurrentUserName, QString("王丽"));
        QCOMPARE(CurrentPostName, QString("客服主管"));
        signIn("1002");
        QCOMPARE(form.List1->count(), 2);
        form.List1->setCurrentRow(0);
        form.List1_DblClick();
        QCOMPARE(mainScreens, 2);
        QCOMPARE(CurrentUserName, QString("李强"));
        QVERIFY(boxes.messages.isEmpty());
        showMainScreen = nullptr;
    }

    void reviewListOpenApproveReject() {
        test::OdbcFixture odbc(seedAccounts);
        test::MsgBoxRecorder boxes;
        CurrentUserName = QStringLiteral("王丽");
        frmQivo账号审核 form;
        form.Show();
        widgets::FlexGrid& grid = *form.MSFlexGrid1;
        QCOMPARE(test::rowKeys(grid), QList<qint32>({102, 101}));
        QCOMPARE(grid.TextMatrix(2, 4), QString("欧阳建国"));
        QCOMPARE(grid.TextMatrix(2, 2), QString("10栋101室"));
        test::clickCell(grid, 2, 7);
        QVERIFY(form.Picture1->isVisible());
        QCOMPARE(form.Text1[0]->text(), QString::fromUtf8("qv\u4DAE101"));
        form.Command3->click();
        QCOMPARE(odbc.db.scalar("select 审核人 from 业户互联网 where HLWID = 101").toString(),
                 QString("王丽"));
        QCOMPARE(odbc.db.scalar("select 审核日期 from 业户互联网 where HLWID = 101").toDate(),
                 QDate::currentDate());
        QCOMPARE(test::rowKeys(grid), QList<qint32>({102}));
        // A colleague approved 102 meanwhile: the rejection deletes nothing, and says so.
        grid.setRow(1);
        odbc.db.exec("Update 业户互联网 Set 审核人 = '李强' Where HLWID = 102");
        form.Command1_Click();
        QCOMPARE(odbc.db.count("select count(*) from 业户互联网 where 审核人 = '李强'"), 1);
        QCOMPARE(boxes.prompts().last(), QString("该Qivo账号已由他人处理，列表已刷新"));
        QCOMPARE(grid.Rows(), 1);
    }

    // A statement the server holds shows nothing for its first moment, then the wait window;
    // 取消 ends it on the server: a list load quietly, an approval on the error path. An approval
    // the server still ran because it read the cancel late is undone, as the message says.
    void heldStatementsShowTheWaitAndCancel() {
        test::OdbcFixture odbc(seedAccounts);
        test::MsgBoxRecorder boxes;
        frmQivo账号审核 form;
        form.Show();
        QStringList waits;
        QTimer presser;
        cancelEveryWait(presser, waits);
        odbc.server().holdStatements("审核人 Is Null", 300);
        form.Command4->click();
        QVERIFY(waits.isEmpty());
        odbc.server().holdStatements("审核人 Is Null", 20000);
        QElapsedTimer clock;
        clock.start();
        form.Command4->click();
        QCOMPARE(waits, QStringList{"正在查询数据库…"});
        QVERIFY(boxes.messages.isEmpty());
        QCOMPARE(test::rowKeys(*form.MSFlexGrid1), QList<qint32>({102, 101}));
        odbc.server().holdStatements("Update 业户互联网", 20000, true);
        form.MSFlexGrid1->setRow(1);
        form.Command3->click();
        QVERIFY(clock.elapsed() < 5000);
        QCOMPARE(waits.size(), 2);
        QCOMPARE(boxes.prompts().last(),
                 QString("运行时错误 '3712':\n\n操作已被用户取消，刚才的更改没有保存。"));
        QCOMPARE(odbc.db.count("select count(*) from 业户互联网 where 审核人 is null"), 2);
        odbc.server().holdStatements({}, 0);
    }

    // A dropped connection comes back at the next action: a list read runs again unnoticed; an
    // approval whose answer never came is not sent again (the server undid it with the
    // connection's open transaction), the reviewer is told, and the list shows what it holds.
    // A long list cut off halfway, its first rows already listed, keeps the lines it had.
    void droppedConnectionComesBack() {
        test::OdbcFixture odbc([](test::FixtureDb& db) {
            seedAccounts(db);
            db.exec("create table approvals (HLWID int)");
            db.exec(
                "create trigger count_approvals after update of 审核人 on 业户互联网"
                " begin insert into approvals values (new.HLWID); end");
        });
        test::MsgBoxRecorder boxes;
        CurrentUserName = QStringLiteral("王丽");
        frmQivo账号审核 form;
        form.Show();
        odbc.server().failNext(test::TdsServer::Fault::Drop, "审核人 Is Null");
        form.Command4->click();
        QCOMPARE(test::rowKeys(*form.MSFlexGrid1), QList<qint32>({102, 101}));
        QVERIFY(boxes.messages.isEmpty());
        test::clickCell(*form.MSFlexGrid1, 2, 7);
        odbc.server().failNext(test::TdsServer::Fault::Drop, "Update 业户互联网");
        form.Command3->click();
        QCOMPARE(odbc.db.count("select count(*) from approvals"), 0);
        QVERIFY(boxes.prompts().last().contains("无法确定"));
        QCOMPARE(test::rowKeys(*form.MSFlexGrid1), QList<qint32>({102, 101}));

        QStringList values;
        for (int key = 1000; key < 4000; ++key) {
            values << QStringLiteral("(%1, 3, 'qv%1', '张伟', '业主')").arg(key);
        }
        odbc.db.exec("insert into 业户互联网 (HLWID, ZH_ID, Qivo号, 姓名, 属性) values " +
                     values.join(u','));
        widgets::FlexGrid& grid = *form.MSFlexGrid1;
        form.Command4->click();
        QCOMPARE(grid.Rows(), 3003);
        grid.setRow(2700);
        const QList<qint32> listed = test::rowKeys(grid);
        const quint32 band = grid.cellBackColor(2, 1);
        const int prompts = boxes.prompts().size();
        odbc.server().failNext(test::TdsServer::Fault::DropHalfway, "审核人 Is Null");
        form.Command4->click();
        QCOMPARE(test::rowKeys(grid), listed);
        QCOMPARE(grid.cellBackColor(2, 1), band);
        QCOMPARE(grid.Row(), 2700);
        QVERIFY(form.StatusBar1->panelText(6).startsWith("列表未能刷新："));
        QCOMPARE(boxes.prompts().size(), prompts);
        form.Command4->click();
        QCOMPARE(grid.Rows(), 3003);
        QCOMPARE(form.StatusBar1->panelText(6), QString());
    }

    // The three deletes of a termination stand or fall together.
    void registerTerminationAllOrNothing() {
        test::OdbcFixture odbc([](test::FixtureDb& db) {
            seedAccounts(db);
            db.exec(
                "create trigger keep_212 before delete on 业户互联网 when old.HLWID = 212 "
                "and (select count(*) from 员工档案) = 0 "
                "begin select raise(abort, 'account 212 is locked'); end");
        });
        test::MsgBoxRecorder boxes;
        frmQivo账号一览表 form;
        form.Show();
        QCOMPARE(test::rowKeys(*form.MSFlexGrid1), QList<qint32>({201}));
        test::clickCell(*form.MSFlexGrid1, 1, 8);
        QCOMPARE(form.Text2[0]->text(), QString("李娜"));
        form.Command1->click();
        QCOMPARE(boxes.messages.size(), 3);  // two questions, then the error path
        QCOMPARE(odbc.db.count("select count(*) from 业户互联网"), 5);
        // A colleague ended member account 211 meanwhile: nothing is deleted, and no error.
        odbc.db.exec("Delete 业户互联网 Where HLWID= 211");
        form.Command1->click();
        QCOMPARE(boxes.prompts().last(), QString("该Qivo账号已由他人处理，列表已刷新"));
        odbc.db.exec("insert into 员工档案 (工号) values ('unlock')");
        test::clickCell(*form.MSFlexGrid1, 1, 8);
        form.Command1->click();
        QCOMPARE(odbc.db.count("select count(*) from 业户互联网"), 2);
        QCOMPARE(form.MSFlexGrid1->Rows(), 1);
    }

    void ownerAndMemberSaves() {
        test::OdbcFixture odbc([](test::FixtureDb& db) {
            db.exec(
                "insert into 业主表 (ZH_ID, S_ID, 姓名, 短信) values (1, 7, '王建国', 1) "
                "insert into ZHZL (ZL_ID, ZH_ID, ZL_xm, ZL_xb, ZL_csrq, ZL_bz) values "
                "(11, 1, '张三', '男', '1990-01-02', '" +
                test::chineseText(3000) + "')");
        });
        odbc.server().setDayFirstLogins(true);
        odbc.reconnect();
        test::MsgBoxRecorder boxes;
        frm业户信息 form;
        form.Show();
        QVERIFY(QTest::qWaitForWindowActive(&form));
        form.Frame1[0]->Tag = "1";
        form.Form_Activate();
        QCOMPARE(form.Grid2->TextMatrix(1, 1), QString("张三"));
        QCOMPARE(form.Grid2->TextMatrix(1, 4), QString("1990-01-02"));

        // Owner update: an emptied box, a typed date.
        form.Text2[1]->setText({});
        form.Text2[4]->setText("2021-02-03");
        form.Command3_Click();
        const QString row = " from 业主表 where ZH_ID=1";
        QCOMPARE(odbc.db.scalar("select 购房日期" + row).toDate(), QDate(2021, 2, 3));
        QVERIFY(odbc.db.scalar("select 固定电话" + row).isNull());

        // Member update, the long remark saved back unchanged, and a new member with empty boxes.
        test::clickCell(*form.Grid2, 1, 1);
        QCOMPARE(form.Text3[12]->text(), test::chineseText(3000));
        form.Text3[0]->setText("张三丰");
        form.Text3[2]->setText("1990-01-03");
        form.Command5_Click();
        QCOMPARE(odbc.db.scalar("select ZL_xm from ZHZL where ZL_ID=11").toString(), "张三丰");
        QCOMPARE(odbc.db.scalar("select ZL_bz from ZHZL where ZL_ID=11").toString(),
                 test::chineseText(3000));
        QCOMPARE(odbc.db.scalar("select ZL_csrq from ZHZL where ZL_ID=11").toDate(),
                 QDate(1990, 1, 3));
        form.Command6_Click();
        form.Combo4->setCurrentIndex(-1);
        form.Combo5->setCurrentIndex(-1);
        form.Command5_Click();
        QCOMPARE(odbc.db.count("select count(*) from ZHZL where ZH_ID=1"), 2);
        QCOMPARE(form.Grid2->Rows(), 3);

        // A new owner whose insert the server ran though 取消 came first: the insert and the
        // read-back of its key are undone together, so saving again stores the owner once.
        form.Frame1[0]->Tag.clear();
        form.Form_Activate();
        form.Text2[0]->setText("钱七");
        QStringList waits;
        QTimer presser;
        cancelEveryWait(presser, waits);
        odbc.server().holdStatements("insert into [业主表]", 20000, true);
        widgets::guarded([&] { form.Command3_Click(); });
        odbc.server().holdStatements({}, 0);
        QCOMPARE(waits.size(), 1);
        QVERIFY(boxes.prompts().last().contains("刚才的更改没有保存"));
        QCOMPARE(form.Frame1[0]->Tag, QString());
        QCOMPARE(odbc.db.count("select count(*) from 业主表 where 姓名='钱七'"), 0);
        form.Command3_Click();
        QCOMPARE(odbc.db.count("select count(*) from 业主表 where 姓名='钱七'"), 1);
        form.Frame1[0]->Tag = "1";
        form.Form_Activate();

        // The misspelt delete reaches the error path with SQL Server's syntax error; the
        // connection goes on serving.
        test::clickCell(*form.Grid2, 1, 1);
        const qsizetype before = boxes.messages.size();
        form.Command7->click();
        QCOMPARE(boxes.messages.size(), before + 2);
        QVERIFY(boxes.messages.last().prompt.startsWith("运行时错误 '156'"));
        QVERIFY(boxes.messages.last().prompt.contains("near the keyword 'From'"));
        QCOMPARE(odbc.db.count("select count(*) from ZHZL"), 2);

        // A new owner is stored once and then updated.
        form.Frame1[0]->Tag = QString();
        form.Form_Activate();
        form.Frame1[1]->Tag = "9";
        form.Text2[0]->setText("欧阳建国");
        form.Command3_Click();
        const QString key = form.Frame1[0]->Tag;
        QVERIFY(key.toInt() > 1);
        form.Text2[0]->setText("赵六");
        form.Command3_Click();
        QCOMPARE(odbc.db.count("select count(*) from 业主表"), 3);
        QCOMPARE(odbc.db.scalar("select 姓名 from 业主表 where ZH_ID=" + key).toString(), "赵六");
    }
};

QIVO_TEST_MAIN(OdbcScreensTest)
#include "test_odbc_screens.moc"
