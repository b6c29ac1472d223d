// The program's SQL Server path against a real T-SQL engine, Babelfish, through FreeTDS: every
// statement of sign-in, both account screens, the owner screen and --check. What the program
// writes is read back through a connection of the suite's own.
#include <QDate>
#include <QListWidget>
#include <QProcess>
#include <QPushButton>
#include <QScopeGuard>
#include <QTemporaryDir>
#include <QTextStream>

#include "check/workstation_check.h"
#include "owner/owner_form.h"
#include "register/register_form.h"
#include "review/review_form.h"
#include "session/connection.h"
#include "session/login_form.h"
#include "session/main_screen.h"
#include "session/session_values.h"
#include "support/babelfish_fixture.h"
#include "support/grid_actions.h"
#include "support/odbc_fixture.h"
#include "widgets/grid_export.h"

using namespace qivo;

namespace {

const QString kDecided = QStringLiteral("该Qivo账号已由他人处理，列表已刷新");

}  // namespace

class BabelfishTest final : public QObject {
    Q_OBJECT

    test::BabelfishServer server;
    std::unique_ptr<test::TsqlClient> other;  // a colleague's connection, and the read-back

    QString text(const QString& sql) { return other->scalar(sql).toString(); }
    int count(const QString& sql) { return text(sql).toInt(); }

  private Q_SLOTS:
    void initTestCase() {
        QVERIFY2(server.error().isEmpty(), qPrintable(server.error()));
        QVERIFY(test::useFreeTds());
    }
    void init() {
        server.seed();
        other = server.client();
        QVERIFY(server.connectProgram());
    }
    void cleanup() { other.reset(); }

    // Staff with one post, with two, who left; the built-in user; a quote in the staff number.
    void signIn() {
        test::MsgBoxRecorder boxes;
        int mainScreens = 0;
        showMainScreen = [&mainScreens] { ++mainScreens; };
        frmLogin form;
        const auto press = [&form](const QString& user, const QString& password) {
            form.Show();
            form.TxtUser->setText(user);
            form.txtPassword->setText(password);
            form.cmdOK->click();
        };
        press("1001", "pw");
        QCOMPARE(CurrentUserName, QString("王丽"));
        QCOMPARE(CurrentPostName, QString("客服主管"));
        QCOMPARE(CurrentDeptName, QString("客服中心"));
        press("1002", "pw");
        QCOMPARE(form.List1->count(), 2);
        form.List1->setCurrentRow(0);
        form.List1_DblClick();
        QCOMPARE(CurrentUserName, QString("李强"));
        press("1003", "pw");
        QCOMPARE(boxes.prompts(), QStringList{"对不起，您没有岗位，请选择系统管理员"});
        press("10'05", "pw");
        QCOMPARE(CurrentUserName, QString("周到"));
        QCOMPARE(CurrentPostName, QString("维修员"));
        press("qd", "qorvelantism7315");
        QCOMPARE(CurrentUserId, QString("超级用户"));
        QCOMPARE(mainScreens, 4);
        QCOMPARE(boxes.messages.size(), 1);
        showMainScreen = nullptr;
    }

    // The list in address order; approval and rejection, each first refused because a colleague
    // decided meanwhile.
    void reviewApproveReject() {
        test::MsgBoxRecorder boxes;
        CurrentUserName = QStringLiteral("王丽");
        frmQivo账号审核 form;
        form.Show();
        widgets::FlexGrid& grid = *form.MSFlexGrid1;
        QCOMPARE(test::rowKeys(grid), QList<qint32>({102, 101}));
        QCOMPARE(grid.TextMatrix(2, 2), QString("10栋101室"));
        QCOMPARE(grid.TextMatrix(2, 4), QString("欧阳建国"));
        test::clickCell(grid, 2, 7);
        QCOMPARE(form.Text1[0]->text(), QString::fromUtf8("qv\u4DAE101"));

        other->run(
            "Update 业户互联网 Set 审核人 = '李强', 审核日期 = '20240301' Where HLWID = 101");
        form.Command3->click();
        QCOMPARE(boxes.prompts().last(), kDecided);
        QCOMPARE(text("select 审核人 from 业户互联网 where HLWID = 101"), QString("李强"));
        QCOMPARE(test::rowKeys(grid), QList<qint32>({102}));
        other->run("Update 业户互联网 Set 审核人 = Null, 审核日期 = Null Where HLWID = 101");
        form.Command4->click();
        test::clickCell(grid, 2, 7);
        form.Command3->click();
        QCOMPARE(text("select 审核人 + '|' + convert(varchar(8), 审核日期, 112) from 业户互联网 "
                      "where HLWID = 101"),
                 "王丽|" + QDate::currentDate().toString("yyyyMMdd"));

        other->run("Update 业户互联网 Set 审核人 = '李强' Where HLWID = 102");
        grid.setRow(1);
        form.Command1_Click();
        QCOMPARE(boxes.prompts().last(), kDecided);
        QCOMPARE(count("select count(*) from 业户互联网 where HLWID = 102"), 1);
        other->run("Update 业户互联网 Set 审核人 = Null Where HLWID = 102");
        form.Command4->click();
        grid.setRow(1);
        form.Command1_Click();
        QCOMPARE(count("select count(*) from 业户互联网 where HLWID = 102"), 0);
        QCOMPARE(grid.Rows(), 1);
    }

    // The owner's and the members' accounts go in one transaction: a foreign key that refuses one
    // member's delete keeps all three; a member ended by a colleague stops the termination.
    void terminationAllOrNothing() {
        test::MsgBoxRecorder boxes;
        frmQivo账号一览表 form;
        form.Show();
        QCOMPARE(test::rowKeys(*form.MSFlexGrid1), QList<qint32>({201}));
        test::clickCell(*form.MSFlexGrid1, 1, 8);
        QCOMPARE(form.Text2[0]->text(), QString("李娜"));
        other->run(
            "create table 终止保留 (HLWID int references 业户互联网 (HLWID)) "
            "insert into 终止保留 values (212)");
        auto unlock = qScopeGuard([this] { other->run("drop table 终止保留"); });
        form.Command1->click();
        QCOMPARE(boxes.messages.size(), 3);  // two questions, then the error path
        QVERIFY2(boxes.prompts().last().startsWith("运行时错误 '547'"),
                 qPrintable(boxes.prompts().last()));
        QCOMPARE(count("select count(*) from 业户互联网 where HLWID in (201, 211, 212)"), 3);
        unlock.dismiss();
        other->run("drop table 终止保留 delete 业户互联网 where HLWID = 211");
        form.Command1->click();
        QCOMPARE(boxes.prompts().last(), kDecided);
        test::clickCell(*form.MSFlexGrid1, 1, 8);
        form.Command1->click();
        QCOMPARE(count("select count(*) from 业户互联网 where ZH_ID = 2"), 0);
        QCOMPARE(form.MSFlexGrid1->Rows(), 1);
    }

    void ownerAndMemberSaves() {
        test::MsgBoxRecorder boxes;
        frm业户信息 form;
        form.Show();
        form.Frame1[0]->Tag = "1";
        form.Form_Activate();
        QCOMPARE(form.Grid2->TextMatrix(1, 1), QString("张三"));
        QCOMPARE(form.Grid2->TextMatrix(1, 4), QString("1990-01-02"));

        form.Text2[1]->setText({});
        form.Text2[4]->setText("2021-02-03");
        form.Command3_Click();
        QCOMPARE(text("select isnull(固定电话, 'null') + convert(varchar(10), 购房日期, 23) "
                      "from 业主表 where ZH_ID = 1"),
                 QString("null2021-02-03"));

        const QString remark = QString(3000, QChar(u'备'));
        test::clickCell(*form.Grid2, 1, 1);
        QCOMPARE(form.Text3[12]->text(), remark);
        form.Text3[0]->setText("张三丰");
        form.Text3[2]->setText("1990-01-03");
        form.Command5_Click();
        QCOMPARE(other->run("select ZL_xm, convert(varchar(10), ZL_csrq, 23), ZL_bz from ZHZL "
                            "where ZL_ID = 11"),
                 QList<QVariantList>({{"张三丰", "1990-01-03", remark}}));
        form.Command6_Click();
        form.Combo4->setCurrentIndex(-1);
        form.Combo5->setCurrentIndex(-1);
        form.Command5_Click();
        QCOMPARE(count("select count(*) from ZHZL where ZH_ID = 1"), 2);
        QCOMPARE(form.Grid2->Rows(), 3);

        // The misspelt delete is the server's syntax error, on the common error path (Babelfish
        // numbers it 33557097, which the program does not know; SQL Server's is 156).
        test::clickCell(*form.Grid2, 1, 1);
        const qsizetype before = boxes.messages.size();
        form.Command7->click();
        QCOMPARE(boxes.messages.size(), before + 2);
        QVERIFY2(boxes.messages.last().prompt.contains("syntax error near 'From'"),
                 qPrintable(boxes.messages.last().prompt));
        QCOMPARE(count("select count(*) from ZHZL"), 2);

        // A new owner: five Chinese characters fill varchar(10) on the server; a sixth the
        // program refuses, counting as the server counts, before the server sees it.
        form.Frame1[0]->Tag = QString();
        form.Form_Activate();
        form.Frame1[1]->Tag = "9";
        form.Text2[0]->setText("欧阳建国国国");
        form.Command3->click();
        QVERIFY2(boxes.messages.last().prompt.startsWith("业主姓名太长"),
                 qPrintable(boxes.messages.last().prompt));
        QCOMPARE(test::errorOf([&] {
                     other->run("update 业主表 set 姓名 = '欧阳建国国国' where ZH_ID = 1");
                 }).number(),
                 8152L);
        form.Text2[0]->setText("欧阳建国国");
        form.Command3_Click();
        const QString key = form.Frame1[0]->Tag;
        QCOMPARE(key, text("select max(ZH_ID) from 业主表"));
        QCOMPARE(text("select 姓名 + '|' + cast(S_ID as varchar) from 业主表 where ZH_ID = " + key),
                 QString("欧阳建国国|9"));
        form.Text2[0]->setText("赵六");
        form.Command3_Click();
        QCOMPARE(count("select count(*) from 业主表"), 6);
        QCOMPARE(text("select 姓名 from 业主表 where ZH_ID = " + key), QString("赵六"));
    }

    // The demo estate on both engines: both lists show the same rows in the same order, the
    // Chinese addresses sorted alike, and export to the same bytes.
    void demoListsAsOnTheEmbeddedEngine() {
        QTemporaryDir dir;
        const QString path = dir.filePath("demo.db");
        QCOMPARE(QProcess::execute(qEnvironmentVariable("QIVO_DEMO_DB"),
                                   {"--no-settings", "--out", path}),
                 0);
        QVERIFY(server.copyRows(path));
        const auto lists = [] {
            frmQivo账号一览表 accounts;
            accounts.Show();
            frmQivo账号审核 review;
            review.Show();
            return QByteArrayList{widgets::gridCsv(*accounts.MSFlexGrid1),
                                  widgets::gridCsv(*review.MSFlexGrid1)};
        };
        const QByteArrayList onServer = lists();
        QVERIFY(onServer[0].count('\n') > 50 && onServer[1].count('\n') > 20);
        QString user, password, catalog, source = "sqlite:" + path;
        QVERIFY(Connection::OpenConnection(user, password, catalog, source));
        QCOMPARE(lists(), onServer);
    }

    // The server restarts under the program: the next list read connects anew, unnoticed.
    void reconnectAfterRestart() {
        test::MsgBoxRecorder boxes;
        frmQivo账号审核 form;
        form.Show();
        other.reset();
        QVERIFY(server.restart());
        form.Command4->click();
        QCOMPARE(test::rowKeys(*form.MSFlexGrid1), QList<qint32>({102, 101}));
        QVERIFY(boxes.messages.isEmpty());
    }

    void checkPassesEveryProbe() {
        QString report;
        QTextStream out(&report);
        const int status = check::checkWorkstation(out);
        const QStringList failed = report.split(u'\n').filter(QStringLiteral("✗"));
        QVERIFY2(status == check::AllPresent && failed.isEmpty(), qPrintable(failed.join(u'\n')));
        QCOMPARE(report.count("✓ "), 23);  // connection, 12 tables, 8 probes, both summaries
        QCOMPARE(count("select count(*) from 业主表"), 5);
    }

    // Last, after every statement above: the program's statements were the only ones, and none
    // reached the server as a cursor.
    void noServerCursors() {
        const QString log = server.log();
        QVERIFY2(!log.contains("cursor", Qt::CaseInsensitive), qPrintable(log.right(2000)));
    }
};

QIVO_TEST_MAIN(BabelfishTest)
#include "test_babelfish.moc"
