#include <QFileInfo>
#include <QProcess>
#include <QScreen>
#include <QScrollBar>

#include "owner/owner_form.h"
#include "register/register_form.h"
#include "review/review_form.h"
#include "support/account_fixture.h"
#include "support/grid_actions.h"
#include "support/test_support.h"

using namespace qivo;

namespace {

// In a process of its own, on the screen and scale its parent chose: each window opens whole
// within its minimum, and what the account screens act through is in view. Prints what fails;
// exits with the number of failures.
int checkWindows() {
    test::FixtureDb db;
    test::writeEstates(db);
    db.exec(
        "insert into 业户互联网 (HLWID, ZH_ID, Qivo号, 姓名, 属性, 审核人) values "
        "(1, 1, 'qv1', '王建国', '业主', null), (2, 2, 'qv2', '李娜', '业主', '王丽')");
    test::MsgBoxRecorder messages;
    test::EndRecorder ends;
    int failures = 0;
    const auto check = [&failures](bool holds, const QWidget& window, const char* what) {
        if (!holds) {
            std::fprintf(stderr, "%s: %s\n", qPrintable(window.windowTitle()), what);
            ++failures;
        }
    };
    const auto whole = [&check](widgets::Form& window) {
        window.Show();
        const QRect area = window.screen()->availableGeometry();
        check(QTest::qWaitForWindowExposed(&window) && area.contains(window.frameGeometry()),
              window, "not whole on the screen");
        check(area.size().expandedTo(window.minimumSize()) == area.size(), window, "minimum");
    };
    // The list's action column and the open panel's buttons are in view without scrolling; a
    // panel too large for the list scrolls up and down only, and a list on it not at all sideways.
    const auto panel = [&](AccountScreen& screen, int col, std::vector<QWidget*> buttons,
                           const QAbstractScrollArea* onPanel) {
        whole(screen);
        widgets::FlexGrid& list = *screen.MSFlexGrid1;
        check(list.horizontalScrollBar()->value() == 0 &&
                  list.viewport()->rect().contains(list.cellRect(1, col)),
              screen, "action column out of view");
        test::clickCell(list, 1, col);
        for (QWidget* button : buttons) {
            check(button->visibleRegion().boundingRect() == button->rect(), screen,
                  "button out of view");
        }
        // However narrow the page, its labels, boxes and headings keep clear of each other.
        const QWidget* page = screen.Picture1->widget();
        const QList<QWidget*> controls = page->findChildren<QWidget*>(Qt::FindDirectChildrenOnly);
        for (const QWidget* control : controls) {
            check(!control->geometry().isEmpty() && page->rect().contains(control->geometry()),
                  screen, "a control off its page");
            for (const QWidget* other : controls) {
                check(control == other || !control->geometry().intersects(other->geometry()),
                      screen, "controls overlap");
            }
        }
        check(screen.Picture1->horizontalScrollBar()->maximum() == 0 &&
                  (onPanel == nullptr || onPanel->horizontalScrollBar()->maximum() == 0),
              screen, "panel scrolls sideways");
    };
    frmQivo账号审核 review;
    panel(review, 7, {review.Command3, review.Command1, review.Command2}, nullptr);
    frmQivo账号一览表 accounts;
    panel(accounts, 8, {accounts.Command1, accounts.Command2}, accounts.MSFlexGrid2);
    frm业户信息 owner;
    owner.Frame1[0]->Tag = QStringLiteral("1");
    whole(owner);
    return failures;
}

}  // namespace

class TestScreensFit final : public QObject {
    Q_OBJECT

  private Q_SLOTS:
    void everyWindowFitsAtEveryScale() {
        QTemporaryDir dir;
        for (const QSize screen : {QSize(1280, 800), QSize(1920, 1080)}) {
            QFile config(dir.filePath(QStringLiteral("%1.json").arg(screen.width())));
            QVERIFY(config.open(QIODevice::WriteOnly));
            config.write(QStringLiteral(R"({"screens": [{"name": "s", "width": %1, "height": %2,
                "logicalDpi": 96, "logicalBaseDpi": 96, "dpr": 1}]})")
                             .arg(screen.width())
                             .arg(screen.height())
                             .toUtf8());
            config.close();
            for (const char* scale : {"1", "1.25", "1.5", "2"}) {
                QProcess child;
                QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
                env.insert(QStringLiteral("QIVO_FIT_CHILD"), QStringLiteral("1"));
                env.insert(QStringLiteral("QT_SCALE_FACTOR"), scale);
                // Named from the child's folder: Qt splits the platform's options at every ':',
                // a Windows drive letter's too.
                env.insert(QStringLiteral("QT_QPA_PLATFORM"),
                           "offscreen:configfile=" + QFileInfo(config.fileName()).fileName());
                child.setProcessEnvironment(env);
                child.setWorkingDirectory(dir.path());
                child.start(QCoreApplication::applicationFilePath(), {});
                QVERIFY(child.waitForFinished(120000));
                QVERIFY2(child.exitCode() == 0,
                         qPrintable(QStringLiteral("%1x%2 at %3: %4")
                                        .arg(screen.width())
                                        .arg(screen.height())
                                        .arg(scale, QString::fromLocal8Bit(
                                                        child.readAllStandardError()))));
            }
        }
    }
};

int main(int argc, char** argv) {
    QTemporaryDir settingsHome;
    qputenv("XDG_CONFIG_HOME", settingsHome.path().toLocal8Bit());
    widgets::Application app(argc, argv);
    if (qEnvironmentVariableIsSet("QIVO_FIT_CHILD")) {
        return checkWindows();
    }
    TestScreensFit test;
    QTEST_SET_MAIN_SOURCE_PATH
    return QTest::qExec(&test, argc, argv);
}

#include "test_screens_fit.moc"
