#include "widgets/button_keys.h"

#include <QAbstractButton>
#include <QShortcut>

namespace qivo::widgets {

void giveKeys(QAbstractButton* button, const QList<QKeySequence>& keys) {
    auto* shortcut = new QShortcut(button);
    shortcut->setKeys(keys);
    shortcut->setContext(Qt::WindowShortcut);
    QObject::connect(shortcut, &QShortcut::activated, button, &QAbstractButton::click);
    const QString what = button->text().isEmpty() ? button->toolTip() : button->text();
    button->setToolTip(keys.first().toString(QKeySequence::NativeText) + u' ' + what);
}

}  // namespace qivo::widgets
