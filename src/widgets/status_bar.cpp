#include "widgets/status_bar.h"

#include <QLabel>

#include "runtime/runtime_error.h"

namespace qivo::widgets {

StatusBar::StatusBar(QWidget* parent, int panels) : QStatusBar(parent) {
    setSizeGripEnabled(false);
    for (int i = 0; i < panels; ++i) {
        addPanel(1);
    }
}

int StatusBar::addPanel(int stretch) {
    auto* label = new QLabel(this);
    label->setFrameShape(QFrame::Panel);
    label->setFrameShadow(QFrame::Sunken);
    addWidget(label, stretch);
    panels_.push_back(label);
    return panelCount();
}

QString StatusBar::panelText(int index) const {
    return panel(index)->text();
}

void StatusBar::setPanelText(int index, const QString& text) {
    panel(index)->setText(text);
}

QLabel* StatusBar::panel(int index) const {
    if (index < 1 || index > panelCount()) {
        throw runtime::RuntimeError(runtime::err::SubscriptOutOfRange, QStringLiteral("下标越界"));
    }
    return panels_[static_cast<std::size_t>(index - 1)];
}

}  // namespace qivo::widgets
