#include "review/mismatch_marks.h"

#include <QLineEdit>

#include "platform/blanks.h"
#include "platform/text_box.h"

namespace qivo::review {

namespace {

const char* const kMarked = "mismatch";

}  // namespace

void markMismatch(platform::TextBox* registered, const QString& ownerValue) {
    if (platform::trimBlanks(registered->text()) == platform::trimBlanks(ownerValue)) {
        clearMismatch(registered);
        return;
    }
    registered->setProperty(kMarked, true);
    registered->setToolTip(QStringLiteral("业主资料：") + ownerValue);
    registered->editor()->setStyleSheet(
        QStringLiteral("border: 2px solid #d0021b; background: #fff0f0;"));
}

void clearMismatch(platform::TextBox* registered) {
    registered->setProperty(kMarked, false);
    registered->setToolTip({});
    registered->editor()->setStyleSheet({});
}

bool isMarkedMismatch(const platform::TextBox* registered) {
    return registered->property(kMarked).toBool();
}

}  // namespace qivo::review
