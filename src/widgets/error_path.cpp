#include "widgets/error_path.h"

#include <QDirIterator>
#include <QIcon>

#include "runtime/runtime_error.h"
#include "widgets/msgbox.h"

namespace qivo::widgets {

namespace {

void showError(const QString& heading, const QString& description) {
    MsgBox(heading + QStringLiteral(":\n\n") + description, vbCritical);
}

}  // namespace

void reportError(const std::exception& error) {
    const auto* runtime = dynamic_cast<const runtime::RuntimeError*>(&error);
    // Errors from the libraries carry no error number, only their text.
    showError(runtime != nullptr ? QStringLiteral("运行时错误 '%1'").arg(runtime->number())
                                 : QStringLiteral("运行时错误"),
              errorDescription(error));
}

QString errorDescription(const std::exception& error) {
    const auto* runtime = dynamic_cast<const runtime::RuntimeError*>(&error);
    return runtime != nullptr ? runtime->description() : QString::fromUtf8(error.what());
}

Application::Application(int& argc, char** argv) : QApplication(argc, argv) {
    QIcon icon;
    for (QDirIterator size(QStringLiteral(":/icons")); size.hasNext();) {
        icon.addFile(size.next());
    }
    setWindowIcon(icon);
}

bool Application::notify(QObject* receiver, QEvent* event) {
    try {
        return QApplication::notify(receiver, event);
    } catch (const std::exception& error) {
        reportError(error);
    } catch (...) {
        showError(QStringLiteral("运行时错误"), QStringLiteral("未知错误"));
    }
    return false;
}

}  // namespace qivo::widgets
