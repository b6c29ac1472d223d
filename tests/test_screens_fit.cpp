#include <QAbstractButton>
#include <QProcess>
#include <QScreen>
#include <QTemporaryDir>

#include "owner/owner_form.h"
#include "register/register_form.h"
#include "review/review_form.h"
#include "session/login_form.h"
#include "support/account_fixture.h"
#include "support/grid_actions.h"
#include "support/test_support.h"

using namespace qivo;

namespace {

// Run by the suite in a process of its own on one screen size and scale: every window opens
// whole, no minimum exceeds the screen, every button of an open panel can be brought into view,
// and on a 1280x800 screen at 100 % the action column of each list is in view as it opens.
// Says what does not hold on standard error.
class FitCheck {
  public:
    int run() {
        test::FixtureDb db;
        test::writeEstates(db);
        db.exec(
            "insert into 业户互联网 (HLWID, ZH_ID, Qivo号, 姓名, 属性, 审核人) values "
            "(1, 1, 'qv1', '王建国', '业主', null), (2, 2, 'qv2', '李娜', '业主', '王丽'),"
            "(3, 2, 'qv3', '李四', '家属', '王丽')");
        test::MsgBoxRecorder messages;
        test::EndRecorder ends;
        frmLogin login;
        whole(login);
        frmQivo账号审核 review;
        whole(review);
        accountScreen(review, 7, {review.Command3, review.Command1, review.Command2});
        frmQivo账号一览表 accounts;
        whole(accounts);
        accountScreen(accounts, 8, {accounts.Command1, accounts.Command2});
        frm业户信息 owner;
        owner.Frame1[0]->Tag = QStringLiteral("1");
        whole(owner);
        return failures_;
    }

  private:
    void fail(const QWidget& window, const QString& what) {
        std::fprintf(stderr, "%s: %s\n", qPrintable(window.windowTitle()), qPrintable(what));
        ++failures_;
    }

    void whole(widgets::Form& window) {
        window.Show();
        if (!QTest::qWaitForWindowExposed(&window)) {
            fail(window, QStringLiteral("not shown"));
        }
        const QRect area = window.screen()->availableGeometry();
        if (window.minimumWidth() > area.width() || window.minimumHeight() > area.height()) {
            fail(window, QStringLiteral("minimum larger than the screen"));
        }
        if (!area.contains(window.frameGeometry())) {
            fail(window, QStringLiteral("not whole on the screen"));
        }
    }

    void accountScreen(AccountScreen& screen, int actionCol,
                       std::initializer_list<QAbstractButton*> panelButtons) {
        widgets::FlexGrid& grid = *screen.MSFlexGrid1;
        const QSize screenSize = screen.screen()->size();
        if (screenSize == QSize(1280, 800) &&
            !grid.viewport()->rect().contains(grid.cellRect(1, actionCol))) {
            fail(screen, QStringLiteral("action column out of view"));
        }
        test::clickCell(grid, 1, actionCol);
        for (QAbstractButton* button : panelButtons) {
            screen.Picture1->ensureWidgetVisible(button);
            if (button->visibleRegion().boundingRect() != button->rect()) {
                fail(screen, button->toolTip() + QStringLiteral(" out of reach"));
            }
        }
    }

    int failures_ = 0;
};

}  // namespace

class TestScreensFit final : public QObject {
    Q_OBJECT

  private Q_SLOTS:
    void everyWindowFits_data() {
        QTest::addColumn<QSize>("screen");
        QTest::addColumn<QString>("scale");
        for (const QSize screen : {QSize(1280, 800), QSize(1920, 1080)}) {
            for (const char* scale : {"1", "1.25", "1.5", "2"}) {
                QTest::addRow("%dx%d at %s", screen.width(), screen.height(), scale)
                    << screen << QString::fromLatin1(scale);
            }
        }
    }

    void everyWindowFits() {
        QFETCH(QSize, screen);
        QFETCH(QString, scale);
        QTemporaryDir dir;
        const QString config = dir.filePath(QStringLiteral("screen.json"));
        QFile file(config);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(QStringLiteral(R"({"screens": [{"name": "s", "x": 0, "y": 0, "width": %1,
            "height": %2, "logicalDpi": 96, "logicalBaseDpi": 96, "dpr": 1}]})")
                       .arg(screen.width())
                       .arg(screen.height())
                       .toUtf8());
        file.close();
        QProcess child;
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert(QStringLiteral("QIVO_FIT_CHILD"), QStringLiteral("1"));
        env.insert(QStringLiteral("QT_SCALE_FACTOR"), scale);
        env.insert(QStringLiteral("QT_QPA_PLATFORM"), "offscreen:configfile=" + config);
        child.setProcessEnvironment(env);
        child.start(QCoreApplication::applicationFilePath(), {});
        QVERIFY(child.waitForFinished(120000));
        QVERIFY2(child.exitCode() == 0, child.readAllStandardError().constData());
    }
};

int main(int argc, char** argv) {
    QTemporaryDir settingsHome;
    qputenv("XDG_CONFIG_HOME", settingsHome.path().toLocal8Bit());
    widgets::Application app(argc, argv);
    if (qEnvironmentVariableIsSet("QIVO_FIT_CHILD")) {
        return FitCheck().run();
    }
    TestScreensFit test;
    QTEST_SET_MAIN_SOURCE_PATH
    return QTest::qExec(&test, argc, argv);
}

#include "test_screens_fit.moc"
