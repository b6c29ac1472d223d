#include <QApplication>
#include <QDir>
#include <QFile>
#include <memory>

#include "accounts/register_opener.h"
#include "review/mismatch_marks.h"
#include "review/review_form.h"
#include "review/review_sql.h"
#include "session/session_values.h"
#include "support/account_fixture.h"
#include "support/grid_actions.h"
#include "support/test_support.h"
#include "widgets/grid_export.h"
#include "widgets/twips.h"

using namespace qivo;

namespace {

// Pending owner registrations 101-104 list in the order 104, 103, 102, 101. Absent: 105 (owner
// in a building of no estate), 106 (no owner row), 107 (a member's), 108 (approved).
const QString kRegistrations = QStringLiteral(
    "insert into 业户互联网 (HLWID, ZH_ID, Qivo号, 姓名, 身份证, 手机, 属性) values "
    "(101, 1, 'qv101', '王建国', '330101', '13900000001', '业主'),"
    "(102, 2, 'qv102', ' 李娜 ', '330102', null, '业主'),"
    "(103, 3, 'qv103', '张伟', null, '13700000003', '业主'),"
    "(104, 4, null, '赵六', '330104', '13600000004', '业主'),"
    "(105, 5, 'qv105', '孙七', '330105', '13500000005', '业主'),"
    "(106, 99, 'qv106', '无名', '330106', '13400000006', '业主'),"
    "(107, 1, 'qv107', '王小明', '330107', '13300000007', '家属') "
    "insert into 业户互联网 (HLWID, ZH_ID, Qivo号, 姓名, 属性, 审核人, 审核日期) values "
    "(108, 2, 'qv108', '李娜', '业主', '王丽', '2024-01-01')");

}  // namespace

class TestReview final : public QObject {
    Q_OBJECT
    std::unique_ptr<test::FixtureDb> db;
    std::unique_ptr<test::MsgBoxRecorder> messages;
    std::unique_ptr<frmQivo账号审核> form;

    int pending() { return db->count("select count(*) from 业户互联网 where 审核人 is null"); }

  private Q_SLOTS:
    // Texts whose slips the database would not notice.
    void sqlTexts() {
        QCOMPARE(review_sql::approveStatement(QDate(2026, 3, 9), "王丽", 7),
                 QString("Update 业户互联网 Set 审核日期 ='20260309', 审核人 = '王丽' Where "
                         "HLWID = 7"));
        QCOMPARE(review_sql::rejectStatement(7), QString("Delete 业户互联网 Where HLWID= 7"));
        QCOMPARE(review_sql::ownerQuery(42), QString("Select * From 业主表 Where ZH_ID=42"));
        QVERIFY(review_sql::pendingListQuery().startsWith(
            "Select 业户互联网.*, GYD_Name As 项目, (case when B.[地址1]"));
        QVERIFY(review_sql::pendingListQuery().contains(
            "as DZ  From 业户互联网 Inner Join 业主表 D On 业户互联网.ZH_ID = D.ZH_ID Inner Join "
            "室表 C On D.S_ID = C.S_ID Inner Join 楼表 B On C.L_ID = B.L_ID Inner Join 设置管理处 "
            "A On A.GYD_DH = B.管理处 where 业户互联网.审核人 Is Null And 业户互联网.属性 = '业主' "
            " "
            "order by 项目,"));
        QCOMPARE(groupThousands(35) + '|' + groupThousands(1204) + '|' + groupThousands(100000) +
                     '|' + groupThousands(1234567),
                 QString("35|1 204|100 000|1 234 567"));
    }

    void init() {
        db = std::make_unique<test::FixtureDb>();
        test::writeEstates(*db);
        db->exec(kRegistrations);
        messages = std::make_unique<test::MsgBoxRecorder>();
        CurrentUserName = QStringLiteral("王丽");
        CurrentDeptName = QStringLiteral("客服中心");
        CurrentPostName = QStringLiteral("审核员");
        form = std::make_unique<frmQivo账号审核>();
        form->Show();
        QVERIFY(QTest::qWaitForWindowExposed(form.get()));
    }
    void cleanup() {
        form.reset();
        messages.reset();
        db.reset();
    }

    void listShowsPendingOwnersInAddressOrder() {
        widgets::FlexGrid& grid = *form->MSFlexGrid1;
        QCOMPARE(test::rowKeys(grid), QList<qint32>({104, 103, 102, 101}));
        QCOMPARE(grid.ColWidth(8), 0);
        QCOMPARE(test::gridLine(grid, 1), QStringList({"1", "白云小区", "1号楼3单元5室", "", "赵六",
                                                       "330104", "13600000004", "审核", "4"}));
        QCOMPARE(QStringList({grid.TextMatrix(2, 2), grid.TextMatrix(3, 2), grid.TextMatrix(4, 2),
                              grid.TextMatrix(4, 0)}),
                 QStringList({"2栋201室", "2栋1001", "10栋101室", "4"}));
        for (int row = 1; row < grid.Rows(); ++row) {
            QCOMPARE(grid.cellForeColor(row, 7), quint32(0xFF0000));
            QCOMPARE(grid.cellBackColor(row, 0), quint32(0));
            for (int col = 1; col < grid.Cols(); ++col) {
                QCOMPARE(grid.cellBackColor(row, col), row % 2 == 0 ? kBandColor : 0u);
            }
        }
        QCOMPARE(form->StatusBar1->panelText(2), QString("王丽"));
        QCOMPARE(form->StatusBar1->panelText(3), QString("客服中心 审核员"));
        QCOMPARE(form->StatusBar1->panelText(4), QString("待审核 4 条"));
        QVERIFY(grid.isVisible());
        QVERIFY(!form->Picture1->isVisible());
        // The first line is drawn as current; the arrow keys and Enter start from it.
        QCOMPARE(test::shownCurrentRow(grid), 1);
        QTest::keyClick(&grid, Qt::Key_Down);
        QCOMPARE(test::shownCurrentRow(grid), 2);
        QTest::keyClick(&grid, Qt::Key_Up);
        QTest::keyClick(&grid, Qt::Key_Return);
        QCOMPARE(form->Text1[2]->text(), QString("赵六"));

        // A list of the header row alone opens nothing.
        db->exec("Delete 业户互联网 Where HLWID < 200");
        form->Command4_Click();
        QCOMPARE(grid.Rows(), 1);
        form->MSFlexGrid1_DblClick();
        QVERIFY(!form->Picture1->isVisible());
        QVERIFY(messages->messages.isEmpty());
    }

    void panelShowsRegistrationBesideOwner() {
        test::clickCell(*form->MSFlexGrid1, 4, 3);  // a click beside the 审核 cell opens nothing
        QVERIFY(!form->Picture1->isVisible());
        test::clickCell(*form->MSFlexGrid1, 4, 7);
        QVERIFY(form->Picture1->isVisible());
        QCOMPARE(test::texts(form->Text1),
                 QStringList({"qv101", "10栋101室", "王建国", "330101", "13900000001"}));
        QCOMPARE(test::texts(form->Text2), QStringList({"王建国", "0571-1", "13900000001", "330101",
                                                        "2020-01-02", "2020-03-04", "2020-05-06",
                                                        "2020-07-08", "电机厂", "杭州", "老住户"}));
        for (auto* box : form->Text1) {
            QVERIFY(!review::isMarkedMismatch(box));
        }

        // Owner 2 has only a name: nothing of owner 1 stays; the blanks around the registered
        // name are no mismatch, the identity number the office lacks is one.
        test::doubleClickCell(*form->MSFlexGrid1, 3, 1);
        QCOMPARE(form->Text1[2]->text(), QString(" 李娜 "));
        QCOMPARE(form->Text1[4]->text(), QString());
        QCOMPARE(test::texts(form->Text2), QStringList{"李娜"} + QStringList(10, QString()));
        QVERIFY(!review::isMarkedMismatch(form->Text1[2]));
        QVERIFY(review::isMarkedMismatch(form->Text1[3]));
        QCOMPARE(form->Text1[3]->toolTip(), QString("业主资料："));
        QVERIFY(!review::isMarkedMismatch(form->Text1[4]));

        // The owner row went after the list was read.
        db->exec("Delete 业主表 Where ZH_ID=3");
        test::doubleClickCell(*form->MSFlexGrid1, 2, 1);
        QCOMPARE(messages->prompts(), QStringList({"数据错误"}));
        QCOMPARE(messages->messages[0].style, widgets::vbOKOnly);
        QCOMPARE(form->Text1[2]->text(), QString("张伟"));
        QCOMPARE(test::texts(form->Text2), QStringList(11, QString()));
        QVERIFY(!review::isMarkedMismatch(form->Text1[4]));
        QVERIFY(form->Picture1->isVisible());

        // An owner record that cannot be read at all: no box keeps owner 1, nothing is marked
        // as matching or not, and the status bar says so.
        test::doubleClickCell(*form->MSFlexGrid1, 4, 1);
        db->exec("alter table 业主表 rename to 业主表_旧");
        test::doubleClickCell(*form->MSFlexGrid1, 3, 1);
        db->exec("alter table 业主表_旧 rename to 业主表");
        QCOMPARE(form->Text1[2]->text(), QString(" 李娜 "));
        QCOMPARE(test::texts(form->Text2), QStringList(11, QString()));
        QVERIFY(!review::isMarkedMismatch(form->Text1[3]));
        QVERIFY(form->StatusBar1->panelText(5).startsWith("业主资料未能读取："));
        QCOMPARE(messages->messages.size(), 1);
    }

    // By keys alone: Tab leaves the list; Enter opens the current row; with the panel open Tab
    // goes round its boxes and buttons back to the list; Escape closes; Ctrl+Enter approves and
    // Ctrl+Delete rejects the opened registration; F5 refreshes. Tool tips name the keys. The
    // close image shows pressed under any mouse button; the left one's click closes the panel.
    void reviewByKeyboardAndCloseImage() {
        QVERIFY(QTest::qWaitForWindowActive(form.get()));
        const auto key = [](int code, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
            QTest::keyClick(QApplication::focusWidget(), Qt::Key(code), modifiers);
        };
        const auto focusIs = [](QWidget* widget) { return QApplication::focusWidget() == widget; };
        key(Qt::Key_Tab);
        QVERIFY(!form->MSFlexGrid1->hasFocus());
        key(Qt::Key_Backtab);
        key(Qt::Key_Home, Qt::ControlModifier);
        key(Qt::Key_Down);
        key(Qt::Key_Return);
        QCOMPARE(form->Text1[2]->text(), QString("张伟"));
        key(Qt::Key_Tab);
        QVERIFY(focusIs(form->Text1[0]->editor()));
        key(Qt::Key_Backtab);
        key(Qt::Key_Backtab);
        QVERIFY(focusIs(form->Command2));
        key(Qt::Key_Tab);
        QVERIFY(focusIs(form->MSFlexGrid1));
        QCOMPARE(QStringList({form->Command3->toolTip(), form->Command1->toolTip(),
                              form->Command2->toolTip(), form->Command4->toolTip(),
                              form->Command5->toolTip(), form->Command6->toolTip(),
                              form->Command6->text()}),
                 QStringList({"Ctrl+Enter 审核同意", "Ctrl+Del 审核不同意", "Esc 关闭", "F5 刷新",
                              "Ctrl+W 退出", "Alt+Q 已审核Qivo账号", "已审核Qivo账号"}));
        key(Qt::Key_Escape);
        QVERIFY(!form->Picture1->isVisible());
        key(Qt::Key_Enter);
        messages->answer(widgets::vbNo);
        key(Qt::Key_Enter, Qt::ControlModifier);
        key(Qt::Key_Return, Qt::ControlModifier);
        key(Qt::Key_Delete, Qt::ControlModifier);  // no panel open, nothing to reject
        QCOMPARE(messages->messages.size(), 2);
        QCOMPARE(db->scalar("select 审核人 from 业户互联网 where HLWID = 103"), QVariant("王丽"));
        key(Qt::Key_Home, Qt::ControlModifier);
        key(Qt::Key_Return);
        key(Qt::Key_Delete, Qt::ControlModifier);
        QCOMPARE(messages->prompts().last(), QString("确认该Qivo账号审核不通过？"));
        db->exec("Delete 业户互联网 Where HLWID = 102");
        key(Qt::Key_F5);
        QCOMPARE(test::rowKeys(*form->MSFlexGrid1), QList<qint32>({101}));

        key(Qt::Key_Return);
        QTest::mousePress(form->Image1, Qt::RightButton);
        QCOMPARE(form->Image1->BorderStyle(), 1);
        QTest::mouseRelease(form->Image1, Qt::RightButton);
        QCOMPARE(form->Image1->BorderStyle(), 0);
        QTest::mouseClick(form->Image1, Qt::LeftButton);
        QVERIFY(!form->Picture1->isVisible());
    }

    // The grid beside the panel stays live: a click or a key moves its current row, and the
    // decision still acts on the registration the panel shows.
    void approveStampsOnlyTheOpenedRow() {
        test::clickCell(*form->MSFlexGrid1, 2, 7);  // registration 103
        test::clickCell(*form->MSFlexGrid1, 1, 1);  // the grid moves to 104, the panel stays
        QCOMPARE(form->MSFlexGrid1->Row(), 1);
        QVERIFY(form->Picture1->isVisible());
        messages->answer(widgets::vbNo);
        form->Command3->click();
        QCOMPARE(pending(), 7);
        QVERIFY(form->Picture1->isVisible());
        QCOMPARE(form->StatusBar1->panelText(5), QString());

        form->Command3->click();
        QCOMPARE(messages->messages.last().prompt, QString("确认该Qivo账号审核通过？"));
        QCOMPARE(messages->messages.last().style, widgets::vbYesNo);
        QCOMPARE(db->scalar("select 审核人 from 业户互联网 where HLWID = 103").toString(),
                 QString("王丽"));
        QCOMPARE(db->scalar("select 审核日期 from 业户互联网 where HLWID = 103").toString(),
                 QDate::currentDate().toString(Qt::ISODate));
        QCOMPARE(pending(), 6);
        QCOMPARE(test::rowKeys(*form->MSFlexGrid1), QList<qint32>({104, 102, 101}));
        QCOMPARE(form->MSFlexGrid1->TextMatrix(3, 0), QString("3"));
        QVERIFY(!form->Picture1->isVisible());
        QCOMPARE(form->StatusBar1->panelText(4), QString("待审核 3 条"));
        QCOMPARE(form->StatusBar1->panelText(5), QString("已审核通过：张伟 2栋201室"));
        QCOMPARE(test::shownCurrentRow(*form->MSFlexGrid1), 2);  // 102 took 103's place

        // A super-user session approves under an empty name: reviewed all the same.
        CurrentUserName.clear();
        test::doubleClickCell(*form->MSFlexGrid1, 1, 2);
        form->Command3_Click();
        QCOMPARE(db->scalar("select 审核人 from 业户互联网 where HLWID = 104"), QVariant(""));
        QCOMPARE(test::rowKeys(*form->MSFlexGrid1), QList<qint32>({102, 101}));
        QCOMPARE(test::shownCurrentRow(*form->MSFlexGrid1), 1);
    }

    void rejectDeletesOnlyTheOpenedRow() {
        test::doubleClickCell(*form->MSFlexGrid1, 3, 2);  // registration 102
        form->MSFlexGrid1->setFocus();
        QTest::keyClick(form->MSFlexGrid1, Qt::Key_Down);
        QCOMPARE(form->MSFlexGrid1->Row(), 4);
        messages->answer(widgets::vbNo);
        form->Command1_Click();
        QCOMPARE(db->count("select count(*) from 业户互联网"), 8);

        form->Command1->click();
        QCOMPARE(messages->messages.last().prompt, QString("确认该Qivo账号审核不通过？"));
        QCOMPARE(db->count("select count(*) from 业户互联网 where HLWID = 102"), 0);
        QCOMPARE(db->count("select count(*) from 业户互联网"), 7);
        QCOMPARE(test::rowKeys(*form->MSFlexGrid1), QList<qint32>({104, 103, 101}));
        QCOMPARE(form->StatusBar1->panelText(5), QString("已审核不通过：李娜 2栋1001"));
        QCOMPARE(test::shownCurrentRow(*form->MSFlexGrid1), 3);

        // A colleague approved 101 meanwhile: it stays approved, and the reviewer is told.
        test::clickCell(*form->MSFlexGrid1, 3, 7);
        db->exec("Update 业户互联网 Set 审核人 = '李强' Where HLWID = 101");
        form->Command1->click();
        QCOMPARE(messages->messages.last().prompt, QString("该Qivo账号已由他人处理，列表已刷新"));
        QCOMPARE(db->count("select count(*) from 业户互联网 where 审核人 = '李强'"), 1);
        QCOMPARE(test::rowKeys(*form->MSFlexGrid1), QList<qint32>({104, 103}));
        QCOMPARE(form->StatusBar1->panelText(5), QString("已审核不通过：李娜 2栋1001"));
        QCOMPARE(test::shownCurrentRow(*form->MSFlexGrid1), 2);  // the last line went
    }

    // In a long list the line that took a handled one's place comes into view; F5 goes back to
    // the first line. A list that cannot be read again keeps its lines and says they are old.
    void currentLineInViewAndAListNotReloaded() {
        QStringList values;
        for (int key = 200; key < 260; ++key) {
            values << QStringLiteral("(%1, 1, 'qv%1', '王建国', '业主')").arg(key);
        }
        db->exec("insert into 业户互联网 (HLWID, ZH_ID, Qivo号, 姓名, 属性) values " +
                 values.join(u','));
        widgets::FlexGrid& grid = *form->MSFlexGrid1;
        form->Command4_Click();
        QCOMPARE(test::shownCurrentRow(grid), 1);
        grid.setFocus();
        QTest::keyClick(&grid, Qt::Key_End, Qt::ControlModifier);
        QTest::keyClick(&grid, Qt::Key_Up);
        QTest::keyClick(&grid, Qt::Key_Return);
        form->Command1_Click();
        QCOMPARE(grid.Rows(), 64);
        QCOMPARE(test::shownCurrentRow(grid), 63);
        form->Command4_Click();
        QCOMPARE(test::shownCurrentRow(grid), 1);

        db->exec("alter table 业户互联网 rename to 业户互联网旧");
        form->Command4_Click();
        QCOMPARE(grid.Rows(), 64);
        QCOMPARE(form->StatusBar1->panelText(4), QString("待审核 63 条（未刷新）"));
        QVERIFY(form->StatusBar1->panelText(6).size() > 7);
        QVERIFY(form->StatusBar1->panelText(6).startsWith("列表未能刷新："));
        QCOMPARE(messages->messages.size(), 1);  // the question alone
        db->exec("alter table 业户互联网旧 rename to 业户互联网");
        form->Command4_Click();
        QCOMPARE(form->StatusBar1->panelText(4), QString("待审核 63 条"));
        QCOMPARE(form->StatusBar1->panelText(6), QString());
    }

    // Ctrl+E offers the screen's name and today's date, saves the list as shown but for the 审核
    // column, and says in the status bar what went where.
    void exportSavesTheListAsShown() {
        QTemporaryDir dir;
        QString proposed;
        widgets::setSaveFileResponder([&](const QString& name) {
            proposed = name;
            return dir.filePath("list.csv");
        });
        form->MSFlexGrid1->setRow(3);
        QTest::keyClick(form->MSFlexGrid1, Qt::Key_E, Qt::ControlModifier);
        widgets::setSaveFileResponder({});
        QCOMPARE(proposed, "待审核Qivo账号-" + QDate::currentDate().toString("yyyyMMdd") + ".csv");
        QFile file(dir.filePath("list.csv"));
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QList<QByteArray> lines = file.readAll().split('\n');
        QCOMPARE(lines[0],
                 QByteArray("\xEF\xBB\xBF序,项目名称,地址,Qivo号,姓名,身份证号,手机号\r"));
        QCOMPARE(lines[1], QByteArray("1,白云小区,1号楼3单元5室,,赵六,330104,13600000004\r"));
        QCOMPARE(form->MSFlexGrid1->Row(), 3);
        QCOMPARE(form->StatusBar1->panelText(5),
                 "已导出 4 行：" + QDir::toNativeSeparators(dir.filePath("list.csv")));
    }

    void resizeFollowsReviewConstants() {
        form->Picture1->setVisible(true);
        form->resize(1200, 800);
        QTest::qWait(1);
        const int width = form->ScaleWidth();
        const auto twips = [](QWidget* w) { return widgets::pixelsToTwips(w->width()); };
        QCOMPARE(form->MSFlexGrid1->width(), widgets::twipsToPixels(width - 200));
        QCOMPARE(form->Command5->x(), widgets::twipsToPixels(width - twips(form->Command5) - 400));
        QCOMPARE(form->Command4->x(), widgets::twipsToPixels(width - twips(form->Command4) -
                                                             twips(form->Command5) - 800));
        const QRect grid = form->MSFlexGrid1->geometry();
        const QRect panel = form->Picture1->geometry();
        QVERIFY(qAbs(panel.center().x() - grid.center().x()) <= 1);
        QVERIFY(qAbs(panel.center().y() - grid.center().y()) <= 1);
        QCOMPARE(form->StatusBar1->geometry().bottom(), form->height() - 1);

        // At its smallest the window still shows the whole panel and clear corner buttons.
        form->resize(1, 1);
        QTest::qWait(1);
        QCOMPARE(form->size(), form->minimumSize());
        const QRect above = form->rect().adjusted(0, 0, 0, -form->StatusBar1->height());
        QVERIFY(above.contains(form->Picture1->geometry()));
        QVERIFY(form->Command4->x() > form->Command6->geometry().right());
        QVERIFY(form->rect().contains(form->Command5->geometry()));

        // Where the window system lets it be smaller, what does not fit keeps its former place.
        const QRect before = form->MSFlexGrid1->geometry();
        form->setMinimumSize(0, 0);
        form->resize(8, 8);
        QTest::qWait(1);
        QCOMPARE(form->MSFlexGrid1->size(), before.size());
        QVERIFY(messages->messages.isEmpty());
        QVERIFY(form->Picture1->isVisible());
    }

    void registerOpensFromHereAndClosingEndsTheProgram() {
        test::EndRecorder ends;
        const QWidget* openedFrom = nullptr;
        showApprovedRegister = [&openedFrom](const QWidget& opener) { openedFrom = &opener; };
        form->Command6->click();
        showApprovedRegister = nullptr;
        QCOMPARE(openedFrom, form.get());
        QCOMPARE(ends.count, 0);
        form->Command5->click();
        QCOMPARE(ends.count, 1);
        form->close();
        QCOMPARE(ends.count, 2);
    }
};

QIVO_TEST_MAIN(TestReview)
#include "test_review.moc"
