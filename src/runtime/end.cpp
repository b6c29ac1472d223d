#include "runtime/end.h"

#include <QApplication>
#include <QWidget>
#include <utility>

namespace qivo::runtime {

namespace {

std::function<void()>& handler() {
    static std::function<void()> instance;
    return instance;
}

bool ended = false;

}  // namespace

void End() {
    if (handler()) {
        handler()();
        return;
    }
    // Closing the main screen calls End again; the first call already does all the work.
    if (ended) {
        return;
    }
    ended = true;
    for (QWidget* window : QApplication::topLevelWidgets()) {
        window->close();
    }
    QCoreApplication::exit(0);
}

bool endRequested() {
    return ended;
}

void setEndHandler(std::function<void()> handler) {
    qivo::runtime::handler() = std::move(handler);
}

}  // namespace qivo::runtime
