#include "review/mismatch_marks.h"

#include <QLineEdit>

#include "runtime/blanks.h"
#include "widgets/text_box.h"

namespace qivo::review {

namespace {

const char* const kMarked = "mismatch";

}  // namespace

void markMismatch(widgets::TextBox* registered, const QString& ownerValue) {
    if (runtime::trimBlanks(registered->text()) == runtime::trimBlanks(ownerValue)) {
        clearMismatch(registered);
        return;
    }
    registered->setProperty(kMarked, true);
    registered->setToolTip(QStringLiteral("业主资料：") + ownerValue);
    registered->editor()->setStyleSheet(
        QStringLiteral("border: 2px solid #d0021b; background: #fff0f0;"));
}

void clearMismatch(widgets::TextBox* registered) {
    registered->setProperty(kMarked, false);
    registered->setToolTip({});
    registered->editor()->setStyleSheet({});
}

bool isMarkedMismatch(const widgets::TextBox* registered) {
    return registered->property(kMarked).toBool();
}

}  // namespace qivo::review
