#pragma once

#include <QCoreApplication>
#include <QPointer>

namespace qivo::widgets {

// The program's one instance of a form, made on first use. It goes when the event loop ends,
// while the application object still stands.
template <class FormType>
FormType& singleForm() {
    static QPointer<FormType> instance;
    if (!instance) {
        instance = new FormType;
        QObject::connect(qApp, &QCoreApplication::aboutToQuit, qApp, [] { delete instance; });
    }
    return *instance;
}

}  // namespace qivo::widgets
