#include <QApplication>
#include <memory>

#include "register/register_form.h"
#include "register/register_sql.h"
#include "session/session_values.h"
#include "support/account_fixture.h"
#include "support/grid_actions.h"
#include "support/test_support.h"
#include "widgets/twips.h"

using namespace qivo;

namespace {

// Approved owner accounts 201-204 list in the order 204, 203, 202, 201; absent: 205 (no estate),
// 206 (pending owner), every member account. Household 1 has members 211 李四, 213 王五 (Null
// Qivo号) and the still pending 212 张三; household 2 has none.
const QString kAccounts = QStringLiteral(
    "insert into 业户互联网 (HLWID, ZH_ID, Qivo号, 姓名, 身份证, 手机, 属性, 审核人, 审核日期) "
    "values "
    "(201, 1, 'qv201', '王建国', '330101', '13900000001', '业主', '王丽', '2024-01-01'),"
    "(202, 2, 'qv202', '李娜', '330102', null, '业主', '王丽', '2024-01-02'),"
    "(203, 3, 'qv203', '张伟', null, '13700000003', '业主', '李强', '2024-01-03'),"
    "(204, 4, null, '赵六', '330104', '13600000004', '业主', '李强', '2024-01-04'),"
    "(205, 5, 'qv205', '孙七', '330105', '13500000005', '业主', '李强', '2024-01-05'),"
    "(206, 3, 'qv206', '张伟', null, null, '业主', null, null),"
    "(211, 1, 'qv211', '李四', '330111', '13311111111', '家属', '王丽', '2024-02-01'),"
    "(212, 1, 'qv212', '张三', '330112', '13311111112', '租户', null, null),"
    "(213, 1, null, '王五', '330113', '13311111113', '家属', '王丽', '2024-02-02')");

}  // namespace

class TestRegister final : public QObject {
    Q_OBJECT
    std::unique_ptr<test::FixtureDb> db;
    std::unique_ptr<test::MsgBoxRecorder> messages;
    std::unique_ptr<frmQivo账号一览表> form;

    int accounts() { return db->count("select count(*) from 业户互联网"); }

  private Q_SLOTS:
    // Texts whose slips the database would not notice.
    void sqlTexts() {
        QCOMPARE(register_sql::memberAccountsQuery("1"),
                 QString("Select * From 业户互联网     where ZH_ID = 1 And 属性 <> '业主' Order By "
                         "姓名"));
        QCOMPARE(register_sql::terminateBatch(1, {2, 3}),
                 QString("Delete 业户互联网 Where HLWID= 1 Delete 业户互联网 Where HLWID= 2 Delete "
                         "业户互联网 Where HLWID= 3"));
        QCOMPARE(register_sql::ownerDetailQuery(5), QString("Select * From 业主表 where ZH_ID=5"));
        QVERIFY(register_sql::approvedListQuery().startsWith(
            "Select 业户互联网.*, GYD_Name As 项目, D.说明, (case when B.[地址1]"));
        QVERIFY(register_sql::approvedListQuery().contains(
            "A On A.GYD_DH = B.管理处 where Not 业户互联网.审核人 Is Null And 业户互联网.属性 = "
            "'业主' order by 项目,"));
    }

    void init() {
        db = std::make_unique<test::FixtureDb>();
        test::writeEstates(*db);
        db->exec(kAccounts);
        messages = std::make_unique<test::MsgBoxRecorder>();
        CurrentUserName = QStringLiteral("李强");
        form = std::make_unique<frmQivo账号一览表>();
        form->Show();
        QVERIFY(QTest::qWaitForWindowExposed(form.get()));
    }
    void cleanup() {
        form.reset();
        messages.reset();
        db.reset();
    }

    void listShowsApprovedOwnersWithHouseholdState() {
        widgets::FlexGrid& grid = *form->MSFlexGrid1;
        QCOMPARE(test::rowKeys(grid), QList<qint32>({204, 203, 202, 201}));
        QCOMPARE(grid.ColWidth(9), 0);
        QCOMPARE(form->MSFlexGrid2->Rows(), 1);
        QCOMPARE(form->MSFlexGrid2->Cols(), 5);
        QCOMPARE(test::gridLine(grid, 1),
                 QStringList({"1", "白云小区", "1号楼3单元5室", "", "赵六", "330104", "13600000004",
                              "已迁出", "查看\\终止", "4"}));
        // 说明 "" and Null are moved out; only the exact "新进户" is a current household.
        QCOMPARE(QStringList({grid.TextMatrix(2, 7), grid.TextMatrix(3, 7), grid.TextMatrix(4, 7),
                              grid.TextMatrix(3, 6)}),
                 QStringList({"已迁出", "已迁出", "", ""}));
        for (int row = 1; row < grid.Rows(); ++row) {
            QCOMPARE(grid.cellForeColor(row, 8), quint32(0xFF0000));
        }
        QCOMPARE(form->StatusBar1->panelText(2), QString("李强"));
        QCOMPARE(form->StatusBar1->panelText(3), QString());  // a session without a post
        QCOMPARE(form->StatusBar1->panelText(4), QString("已审核 4 户"));
        QCOMPARE(test::shownCurrentRow(grid), 1);
    }

    void openingShowsOwnerAndMemberAccounts() {
        test::clickCell(*form->MSFlexGrid1, 2, 3);  // any column but 8 only selects the row
        QVERIFY(!form->Picture1->isVisible());
        QCOMPARE(form->MSFlexGrid1->Col(), 0);
        QCOMPARE(form->MSFlexGrid1->ColSel(), 9);

        test::clickCell(*form->MSFlexGrid1, 4, 8);
        QVERIFY(form->Picture1->isVisible());
        QCOMPARE(form->Text1[0]->text(), QString("qv201"));
        QCOMPARE(form->Text2[7]->text(), QString("2020-07-08"));
        QCOMPARE(form->Text2[10]->text(), QString("老住户"));
        widgets::FlexGrid& members = *form->MSFlexGrid2;
        QCOMPARE(test::rowKeys(members),
                 QList<qint32>({211, 213, 212}));  // by name, pending included
        QCOMPARE(test::gridLine(members, 2).mid(0, 3), QStringList({"2", "", "王五"}));
        QCOMPARE(members.TextMatrix(3, 4), QString("13311111112"));

        // A second opening replaces every box and the member list.
        test::doubleClickCell(*form->MSFlexGrid1, 3, 1);
        QCOMPARE(form->Text1[0]->text(), QString("qv202"));
        QCOMPARE(form->Text1[4]->text(), QString());
        QCOMPARE(test::texts(form->Text2), QStringList{"李娜"} + QStringList(10, QString()));
        QCOMPARE(members.Rows(), 1);

        // A Null owner name stops the owner fill without a message box; no box keeps the owner
        // opened before, and the status bar says the record could not be read.
        db->exec("Update 业主表 Set 姓名 = null, 备注 = '新备注' Where ZH_ID=1");
        form->MSFlexGrid1->setRow(4);
        form->MSFlexGrid1_DblClick();
        QCOMPARE(form->Text1[0]->text(), QString("qv201"));
        QCOMPARE(test::texts(form->Text2), QStringList(11, QString()));
        QVERIFY(form->StatusBar1->panelText(5).startsWith("业主资料未能读取："));
        QCOMPARE(members.Rows(), 4);
        QVERIFY(messages->messages.isEmpty());
    }

    // The list beside the panel stays live; termination still ends the opened household.
    void terminationAsksThenDeletesOwnerAndMembers() {
        test::clickCell(*form->MSFlexGrid1, 4, 8);  // household 1, three member accounts
        test::clickCell(*form->MSFlexGrid1, 2, 3);
        QTest::keyClick(form->MSFlexGrid1, Qt::Key_Up);
        QCOMPARE(form->MSFlexGrid1->Row(), 1);
        QVERIFY(form->Picture1->isVisible());
        messages->answer(widgets::vbNo);
        form->Command1->click();
        messages->answer(widgets::vbYes);
        messages->answer(widgets::vbNo);
        form->Command1->click();
        QCOMPARE(accounts(), 9);
        QCOMPARE(messages->prompts(),
                 QStringList({"确认要终止这个Qivo账号", "确认要终止这个Qivo账号",
                              "该业主名下的Qivo账号将同时终止"}));
        QCOMPARE(messages->messages[2].style, widgets::vbYesNo);

        form->Command1->click();
        QCOMPARE(accounts(), 5);
        QCOMPARE(db->count("select count(*) from 业户互联网 where HLWID in (201, 211, 212, 213)"),
                 0);
        QCOMPARE(test::rowKeys(*form->MSFlexGrid1), QList<qint32>({204, 203, 202}));
        QVERIFY(!form->Picture1->isVisible());
        QCOMPARE(form->StatusBar1->panelText(4), QString("已审核 3 户"));
        QCOMPARE(form->StatusBar1->panelText(5),
                 QString("已终止：王建国 10栋101室，连同名下成员账号 3 个"));
        QCOMPARE(test::shownCurrentRow(*form->MSFlexGrid1), 3);  // the last line went

        // Household 2 has no member accounts: one question, one delete.
        messages->messages.clear();
        test::clickCell(*form->MSFlexGrid1, 3, 8);
        form->Command1->click();
        QCOMPARE(messages->prompts(), QStringList({"确认要终止这个Qivo账号"}));
        QCOMPARE(accounts(), 4);
        QCOMPARE(form->StatusBar1->panelText(5), QString("已终止：李娜 2栋1001"));
        QCOMPARE(test::shownCurrentRow(*form->MSFlexGrid1), 2);
    }

    void failingDeleteLeavesEveryAccount() {
        db->exec(
            "create trigger keep_213 before delete on 业户互联网 when old.HLWID = 213 "
            "begin select raise(abort, 'account 213 is locked'); end");
        test::clickCell(*form->MSFlexGrid1, 4, 8);
        form->Command1->click();
        QCOMPARE(messages->messages.size(), 3);  // two questions, then the error path
        QCOMPARE(accounts(), 9);
        QVERIFY(form->Picture1->isVisible());
        QCOMPARE(form->MSFlexGrid1->Rows(), 5);

        // A colleague ended member account 211 meanwhile: nothing is deleted, the list reloads.
        db->exec("Delete 业户互联网 Where HLWID= 211");
        form->Command1->click();
        QCOMPARE(messages->messages.last().prompt, QString("该Qivo账号已由他人处理，列表已刷新"));
        QCOMPARE(accounts(), 8);
        QVERIFY(!form->Picture1->isVisible());
    }

    void resizeFollowsRegisterConstants() {
        form->resize(1100, 760);
        QTest::qWait(1);
        const int width = form->ScaleWidth();
        QCOMPARE(form->MSFlexGrid1->width(), widgets::twipsToPixels(width - 180));
        QCOMPARE(form->Command5->x(), widgets::twipsToPixels(width - 1365 - 300));
        QCOMPARE(form->Command4->x(), widgets::twipsToPixels(width - 1365 - 1365 - 900));
        // Tops and the panel's buttons keep their design places.
        QCOMPARE(form->Command4->geometry().top(), widgets::twipsToPixels(60));
        QCOMPARE(form->Command5->geometry().top(), widgets::twipsToPixels(45));
        QCOMPARE(form->Command1->geometry(), QRect(210, 537, 98, 30));
        // At its smallest the panel with 终止 and 关闭 is whole above the status bar.
        form->Picture1->setVisible(true);
        form->resize(1, 1);
        QTest::qWait(1);
        QCOMPARE(form->size(), form->minimumSize());
        const QRect above = form->rect().adjusted(0, 0, 0, -form->StatusBar1->height());
        QVERIFY(above.contains(form->Picture1->geometry()));
        QVERIFY(form->Command4->x() > form->Label1[0]->geometry().right());
    }

    void panelClosesByKeyButtonAndRefreshTerminatesByKeys() {
        form->MSFlexGrid1->setRow(4);
        QTest::keyClick(form->MSFlexGrid1, Qt::Key_Enter);
        QCOMPARE(form->MSFlexGrid2->Rows(), 4);
        QTest::keyClick(form->MSFlexGrid2, Qt::Key_Escape);
        QVERIFY(!form->Picture1->isVisible());
        test::clickCell(*form->MSFlexGrid1, 1, 8);
        form->Command2->click();
        QVERIFY(!form->Picture1->isVisible());
        test::clickCell(*form->MSFlexGrid1, 1, 8);
        db->exec("Delete 业户互联网 Where HLWID = 204");
        form->Command4->click();
        QVERIFY(!form->Picture1->isVisible());
        QCOMPARE(test::rowKeys(*form->MSFlexGrid1), QList<qint32>({203, 202, 201}));

        // By keys: Enter opens household 1, Ctrl+Delete terminates it with its member accounts.
        QVERIFY(QTest::qWaitForWindowActive(form.get()));
        form->MSFlexGrid1->setFocus();
        QTest::keyClick(form->MSFlexGrid1, Qt::Key_End, Qt::ControlModifier);
        QTest::keyClick(form->MSFlexGrid1, Qt::Key_Return);
        QCOMPARE(form->MSFlexGrid2->Rows(), 4);
        QTest::keyClick(form->MSFlexGrid1, Qt::Key_Delete, Qt::ControlModifier);
        QCOMPARE(db->count("select count(*) from 业户互联网 where HLWID in (201, 211, 212, 213)"),
                 0);
        QCOMPARE(test::rowKeys(*form->MSFlexGrid1), QList<qint32>({203, 202}));
        QCOMPARE(form->Command1->toolTip(), QString("Ctrl+Del 终止"));

        // 退出 (Ctrl+W) closes only this screen.
        test::EndRecorder ends;
        QTest::keyClick(form->MSFlexGrid1, Qt::Key_W, Qt::ControlModifier);
        QVERIFY(!form->isVisible());
        QCOMPARE(ends.count, 0);
    }
};

QIVO_TEST_MAIN(TestRegister)
#include "test_register.moc"
