#pragma once

#include <QKeySequence>
#include <QList>

class QAbstractButton;

namespace qivo::widgets {

// Keys that press the button while it is shown in the active window. Its caption stays as it
// is; the tool tip names the first key before the caption (or before the tip of a picture
// button): "Ctrl+Enter 审核同意".
void giveKeys(QAbstractButton* button, const QList<QKeySequence>& keys);

}  // namespace qivo::widgets
