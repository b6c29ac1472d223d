// qivo-screenshots DIR: signs in on a fresh demo database and saves the screens the README
// shows, the owner screen included, as PNG files in DIR. Run it offscreen
// (QT_QPA_PLATFORM=offscreen).
#include <QDir>
#include <QFile>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <cstdio>

#include "database/ado.h"
#include "db/demo_data.h"
#include "db/schema.h"
#include "owner/owner_form.h"
#include "register/register_form.h"
#include "review/mismatch_marks.h"
#include "review/review_form.h"
#include "runtime/settings.h"
#include "session/connection.h"
#include "session/login_form.h"
#include "session/main_screen.h"
#include "session/session_values.h"
#include "widgets/error_path.h"
#include "widgets/msgbox.h"
#include "widgets/screen_font.h"

using namespace qivo;

namespace {

void save(QWidget& screen, const QString& dir, const QString& name) {
    QTest::qWait(50);
    const QString path = QDir(dir).filePath(name);
    if (!screen.grab().save(path)) {
        std::fprintf(stderr, "qivo-screenshots: cannot write %s\n", qPrintable(path));
        std::exit(1);
    }
    std::printf("%s\n", qPrintable(path));
}

void writeDemoDatabase(const QString& path) {
    QFile file(path);
    file.open(QIODevice::WriteOnly);
    file.close();
    database::AdoConnection connection;
    connection.ConnectionString = "Data Source='sqlite:" + path + "'";
    connection.Open();
    db::createEmbeddedSchema(connection);
    db::writeDemoData(connection, 80);
    const QString section = QStringLiteral("DBConfig");
    runtime::SaveSetting(QStringLiteral("Merivane"), section, "Svr", "sqlite:" + path);
    runtime::SaveSetting(QStringLiteral("Merivane"), section, "DBname", "qivo_demo");
}

// Opens list rows until `wanted` holds for the open panel.
template <class Screen, class Wanted>
void openFirstRow(Screen& screen, Wanted wanted) {
    for (int row = 1; row < screen.MSFlexGrid1->Rows(); ++row) {
        screen.MSFlexGrid1->setRow(row);
        screen.MSFlexGrid1_DblClick();
        if (wanted()) {
            return;
        }
    }
}

// The pictures show the windows as they open on a 1280x800 screen, the size the screens are
// checked at, rather than on the offscreen platform's default 800x600.
void useScreen1280x800(const QTemporaryDir& config) {
    const QString path = config.filePath(QStringLiteral("screen.json"));
    QFile file(path);
    file.open(QIODevice::WriteOnly);
    file.write(R"({"screens": [{"name": "screen", "x": 0, "y": 0, "width": 1280, "height": 800,
                   "logicalDpi": 96, "logicalBaseDpi": 96, "dpr": 1}]})");
    file.close();
    qputenv("QT_QPA_PLATFORM", ("offscreen:configfile=" + path).toLocal8Bit());
}

}  // namespace

int main(int argc, char** argv) {
    QTemporaryDir config;
    qputenv("XDG_CONFIG_HOME", config.path().toLocal8Bit());
    useScreen1280x800(config);
    widgets::Application app(argc, argv);
    app.setFont(widgets::screenFont(app.font()));
    if (app.arguments().size() != 2) {
        std::fprintf(stderr, "usage: qivo-screenshots DIR\n");
        return 2;
    }
    const QString dir = app.arguments().at(1);
    QDir().mkpath(dir);
    writeDemoDatabase(config.filePath(QStringLiteral("demo.db")));
    // Nobody is there to answer a message box: print it and say yes.
    widgets::setMsgBoxResponder([](const widgets::MsgBoxRequest& request) {
        std::fprintf(stderr, "qivo-screenshots: message: %s\n", qPrintable(request.prompt));
        return widgets::vbYes;
    });

    frmLogin login;
    showMainScreen = [] {};
    login.Show();
    QTest::qWait(50);
    QTest::keyClicks(login.TxtUser->editor(), QStringLiteral("1002"));
    QTest::keyClicks(login.txtPassword->editor(), QStringLiteral("1002"));
    QTest::mouseClick(login.cmdOK, Qt::LeftButton);
    save(login, dir, QStringLiteral("login.png"));
    login.Unload();

    CurrentUserName = QStringLiteral("王丽");
    CurrentDeptName = QStringLiteral("客服中心");
    CurrentPostName = QStringLiteral("客服主管");
    frmQivo账号审核 review;
    review.Show();
    save(review, dir, QStringLiteral("review.png"));
    openFirstRow(review, [&review] { return review::isMarkedMismatch(review.Text1[4]); });
    save(review, dir, QStringLiteral("review_panel.png"));

    frmQivo账号一览表 accounts;
    accounts.Show();
    save(accounts, dir, QStringLiteral("register.png"));
    openFirstRow(accounts, [&accounts] { return accounts.MSFlexGrid2->Rows() > 2; });
    save(accounts, dir, QStringLiteral("register_panel.png"));

    // The first household with members, as another program of the estate system opens it.
    database::Recordset household;
    household.Open(QStringLiteral("Select ZH_ID From ZHZL Order By ZH_ID"), Connection::cn());
    frm业户信息 owner;
    owner.Frame1[0]->Tag = database::fieldText(household.Fields(QStringLiteral("ZH_ID")));
    owner.Show();
    if (!QTest::qWaitForWindowActive(&owner)) {
        std::fprintf(stderr, "qivo-screenshots: the owner screen did not come up\n");
        return 1;
    }
    save(owner, dir, QStringLiteral("owner.png"));
    return 0;
}
