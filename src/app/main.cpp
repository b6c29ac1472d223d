#include <QStringList>
#include <QTextStream>
#include <QTimer>
#include <cstdio>
#include <cstring>

#ifdef Q_OS_WIN
#include <windows.h>
#endif

#include "accounts/register_opener.h"
#include "app/owner_launch.h"
#include "app/program_options.h"
#include "check/workstation_check.h"
#include "register/register_form.h"
#include "review/review_form.h"
#include "runtime/end.h"
#include "session/command_line.h"
#include "session/connection.h"
#include "session/login_form.h"
#include "session/main_screen.h"
#include "widgets/error_path.h"
#include "widgets/msgbox.h"
#include "widgets/qt_translations.h"
#include "widgets/screen_font.h"

namespace {

// Without a display Qt would abort with a plugin stack trace; say it plainly instead.
bool hasDisplay() {
#if defined(Q_OS_LINUX)
    return qEnvironmentVariableIsSet("DISPLAY") || qEnvironmentVariableIsSet("WAYLAND_DISPLAY") ||
           qEnvironmentVariableIsSet("QT_QPA_PLATFORM");
#else
    return true;
#endif
}

// Started from the Start menu, the program got a console window of its own, which the screens do
// not need; one shared with a command prompt stays. Redirected output is not a console and stays.
void releaseOwnConsole() {
#ifdef Q_OS_WIN
    DWORD processes[2];
    if (GetConsoleProcessList(processes, 2) == 1) {
        FreeConsole();
    }
#endif
}

}  // namespace

int main(int argc, char** argv) {
    QStringList options;
    for (int i = 1; i < argc; ++i) {
        options << QString::fromLocal8Bit(argv[i]);
    }
    if (const auto status = qivo::app::answerInformationOptions(options)) {
        return *status;
    }
    // The administrator's check needs neither a display nor a sign-in.
    if (argc == 2 && std::strcmp(argv[1], "--check") == 0) {
        QCoreApplication core(argc, argv);
        QTextStream out(stdout);
        return qivo::check::checkWorkstation(out);
    }
    if (!hasDisplay()) {
        std::fputs(
            "qivo-review: 没有图形显示（DISPLAY 未设置）。请在桌面环境中运行，或使用 "
            "xvfb-run make run。\n",
            stderr);
        return 1;
    }
    releaseOwnConsole();
    qivo::widgets::Application app(argc, argv);
    app.setFont(qivo::widgets::screenFont(app.font()));
    qivo::widgets::loadQtTranslations(app);

    QStringList arguments = app.arguments().mid(1);
    const auto ownerLaunch = qivo::app::startOwnerScreen(arguments);
    qivo::frmLogin login;
    if (!ownerLaunch) {
        const QString commandLine = qivo::sessionText(arguments);
        if (!commandLine.isEmpty()) {
            try {
                qivo::commandLineFields(commandLine);
            } catch (const std::exception& error) {
                qivo::widgets::reportError(error);
                return 2;
            }
        }
        // A fresh install: what to set up is told before the sign-in form asks for anything.
        if (qivo::readConnectionSettings().dataSource.isEmpty()) {
            qivo::widgets::MsgBox(qivo::missingServerText(), qivo::widgets::vbInformation,
                                  QStringLiteral("连接提示"));
            return 1;
        }
        qivo::setCommand(commandLine);
        qivo::showMainScreen = [] { qivo::reviewForm().Show(); };
        qivo::showApprovedRegister = [](const QWidget& opener) {
            qivo::registerForm().ShowBeside(opener);
        };
        login.Show();
    }
    // The start-up benchmark measures up to the first shown window.
    if (qEnvironmentVariableIsSet("QIVO_QUIT_WHEN_SHOWN")) {
        QTimer::singleShot(0, &app, &QCoreApplication::quit);
    }
    if (qivo::runtime::endRequested()) {
        return ownerLaunch ? ownerLaunch->exitStatus() : 0;
    }
    return app.exec();
}
