#pragma once

#include <QApplication>
#include <QObject>
#include <exception>
#include <utility>

namespace qivo::widgets {

// The common error path: one message box with the error's number and description.
void reportError(const std::exception& error);

// An error's description as the common error path shows it.
QString errorDescription(const std::exception& error);

// Runs one event handler; whatever it throws goes to the common error path, so the program
// keeps running and the handler's remaining steps do not happen.
template <class Handler>
void guarded(Handler&& handler) {
    try {
        std::forward<Handler>(handler)();
    } catch (const std::exception& error) {
        reportError(error);
    }
}

// Connects a signal to a handler that runs on the common error path. Exceptions never cross
// Qt's own frames this way.
template <class Sender, class Signal, class Handler>
QMetaObject::Connection onEvent(Sender* sender, Signal signal, const QObject* context,
                                Handler handler) {
    return QObject::connect(sender, signal, context, [handler] { guarded(handler); });
}

// The application object: the last net at the event boundary for anything a handler threw. It
// gives every window the program's icon.
class Application final : public QApplication {
  public:
    Application(int& argc, char** argv);
    bool notify(QObject* receiver, QEvent* event) override;
};

}  // namespace qivo::widgets
