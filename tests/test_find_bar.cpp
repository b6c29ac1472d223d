#include <QLineEdit>
#include <memory>

#include "register/register_form.h"
#include "review/review_form.h"
#include "session/session_values.h"
#include "support/account_fixture.h"
#include "support/test_support.h"
#include "widgets/grid_find_bar.h"

using namespace qivo;

namespace {

// Owners 1-4 list in the order 4, 3, 2, 1 on both screens: pending 101-104, approved 201-204.
const QString kRegistrations = QStringLiteral(
    "insert into 业户互联网 (HLWID, ZH_ID, Qivo号, 姓名, 身份证, 手机, 属性) values "
    "(101, 1, 'qv101', '王建国', '330101', '13900000001', '业主'),"
    "(102, 2, 'qv102', '李娜', '330102', null, '业主'),"
    "(103, 3, 'qv103', '张伟', null, '13700000003', '业主'),"
    "(104, 4, null, '赵六', '330104', '13600000004', '业主') "
    "insert into 业户互联网 (HLWID, ZH_ID, Qivo号, 姓名, 身份证, 手机, 属性, 审核人, 审核日期) "
    "values (201, 1, 'QV201', '王建国', '330101', '13900000001', '业主', '王丽', '2024-01-01'),"
    "(202, 2, 'qv202', '李娜', '330102', null, '业主', '王丽', '2024-01-01'),"
    "(203, 3, 'qv203', '张伟', null, '13700000003', '业主', '王丽', '2024-01-01'),"
    "(204, 4, null, '赵六', '330104', '13600000004', '业主', '王丽', '2024-01-01')");

}  // namespace

class TestFindBar final : public QObject {
    Q_OBJECT
    std::unique_ptr<test::FixtureDb> db;

    // Ctrl+F opens the bar between the list and the status bar, a search selects the household's
    // row and opens nothing, Escape gives the list its room back, then a double-click opens the
    // found row as usual.
    template <class Screen>
    void findThenOpen(const QString& typed, int foundRow) {
        test::EndRecorder ends;  // closing the review screen ends the program
        Screen screen;
        screen.Show();
        screen.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&screen));
        screen.MSFlexGrid1->setFocus();
        const QRect list = screen.MSFlexGrid1->geometry();
        QTest::keyClick(screen.MSFlexGrid1, Qt::Key_F, Qt::ControlModifier);
        QVERIFY(screen.FindBar1->isVisible());
        QCOMPARE(screen.FindBar1->geometry().top(), screen.MSFlexGrid1->geometry().bottom() + 1);
        QVERIFY(screen.FindBar1->geometry().bottom() < screen.StatusBar1->geometry().top());
        screen.FindBar1->findText()->insert(typed);
        QCOMPARE(screen.MSFlexGrid1->Row(), foundRow);
        QCOMPARE(screen.FindBar1->result(), QStringLiteral("1 / 1"));
        QVERIFY(!screen.Picture1->isVisible());
        QTest::keyClick(screen.FindBar1->findText(), Qt::Key_Escape);
        QVERIFY(!screen.FindBar1->isVisible());
        QCOMPARE(screen.MSFlexGrid1->geometry(), list);
        QVERIFY(!screen.Picture1->isVisible());
        screen.MSFlexGrid1_DblClick();
        QVERIFY(screen.Picture1->isVisible());
        QCOMPARE(screen.Text1[2]->text(), QStringLiteral("王建国"));
        screen.close();
    }

  private Q_SLOTS:
    void init() {
        db = std::make_unique<test::FixtureDb>();
        test::writeEstates(*db);
        db->exec(kRegistrations);
        CurrentUserName = QStringLiteral("王丽");
    }
    void cleanup() { db.reset(); }

    void reviewScreen() { findThenOpen<frmQivo账号审核>(QStringLiteral("qv101"), 4); }
    void registerScreen() { findThenOpen<frmQivo账号一览表>(QStringLiteral("qv201"), 4); }
};

QIVO_TEST_MAIN(TestFindBar)
#include "test_find_bar.moc"
