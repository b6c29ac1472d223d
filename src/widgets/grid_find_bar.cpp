#include "widgets/grid_find_bar.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QShortcut>
#include <algorithm>

#include "widgets/flex_grid.h"

namespace qivo::widgets {

GridFindBar::GridFindBar(FlexGrid* grid, QWidget* window)
    : QFrame(window), grid_(grid), text_(new QLineEdit(this)), result_(new QLabel(this)) {
    setFrameShape(QFrame::StyledPanel);
    setAutoFillBackground(true);
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(4, 2, 4, 2);
    layout->addWidget(new QLabel(QStringLiteral("查找"), this));
    layout->addWidget(text_, 1);
    layout->addWidget(result_);
    result_->setMinimumWidth(fontMetrics().horizontalAdvance(QStringLiteral("00000 / 00000")));
    text_->setClearButtonEnabled(true);
    text_->installEventFilter(this);
    grid_->installEventFilter(this);
    connect(text_, &QLineEdit::textChanged, this, [this] { find(Direction::First); });
    connect(text_, &QLineEdit::returnPressed, this, [this] { findNext(); });

    auto* open = new QShortcut(QKeySequence(Qt::CTRL | Qt::Key_F), window);
    open->setContext(Qt::WidgetWithChildrenShortcut);
    connect(open, &QShortcut::activated, this, [this] { openBar(); });
    whileOpen_ = {new QShortcut(QKeySequence(Qt::Key_F3), window),
                  new QShortcut(QKeySequence(Qt::SHIFT | Qt::Key_F3), window)};
    connect(whileOpen_[0], &QShortcut::activated, this, [this] { findNext(); });
    connect(whileOpen_[1], &QShortcut::activated, this, [this] { findPrevious(); });
    for (QShortcut* shortcut : whileOpen_) {
        shortcut->setContext(Qt::WidgetWithChildrenShortcut);
        shortcut->setEnabled(false);
    }
    hide();
}

QString GridFindBar::result() const {
    return result_->text();
}

void GridFindBar::openBar() {
    placeUnderGrid();
    show();
    raise();
    for (QShortcut* shortcut : whileOpen_) {
        shortcut->setEnabled(true);
    }
    text_->setFocus(Qt::ShortcutFocusReason);
    text_->selectAll();
    Q_EMIT openedOrClosed();
}

void GridFindBar::closeBar() {
    hide();
    for (QShortcut* shortcut : whileOpen_) {
        shortcut->setEnabled(false);
    }
    grid_->setFocus(Qt::OtherFocusReason);
    Q_EMIT openedOrClosed();
}

void GridFindBar::findNext() {
    find(Direction::Next);
}

void GridFindBar::findPrevious() {
    find(Direction::Previous);
}

void GridFindBar::find(Direction direction) {
    if (text_->text().isEmpty()) {
        result_->clear();
        return;
    }
    const std::vector<int> matches = grid_->rowsContaining(text_->text());
    if (matches.empty()) {
        result_->setStyleSheet(QStringLiteral("color: red;"));
        result_->setText(QStringLiteral("无匹配"));
        return;
    }
    std::size_t match = 0;
    if (direction == Direction::Next) {
        const auto after = std::upper_bound(matches.begin(), matches.end(), grid_->Row());
        match = after == matches.end() ? 0 : static_cast<std::size_t>(after - matches.begin());
    } else if (direction == Direction::Previous) {
        const auto at = std::lower_bound(matches.begin(), matches.end(), grid_->Row());
        match = at == matches.begin() ? matches.size() - 1
                                      : static_cast<std::size_t>(at - matches.begin()) - 1;
    }
    // The whole row is selected, so the reviewer sees which one was found; the current column
    // after a fill is the hidden key column, which shows no selection.
    grid_->setRow(matches[match]);
    grid_->setCol(grid_->FixedCols());
    grid_->setColSel(grid_->Cols() - 1);
    grid_->showRow(matches[match]);
    result_->setStyleSheet({});
    result_->setText(QStringLiteral("%1 / %2").arg(match + 1).arg(matches.size()));
}

bool GridFindBar::eventFilter(QObject* watched, QEvent* event) {
    if (watched == grid_) {
        if (isVisible() && (event->type() == QEvent::Move || event->type() == QEvent::Resize)) {
            placeUnderGrid();
        }
        return false;
    }
    if (event->type() != QEvent::ShortcutOverride && event->type() != QEvent::KeyPress) {
        return false;
    }
    // Escape and Enter in the bar are the bar's, whatever the window does with them elsewhere.
    const int key = static_cast<QKeyEvent*>(event)->key();
    if (key != Qt::Key_Escape && key != Qt::Key_Return && key != Qt::Key_Enter) {
        return false;
    }
    if (event->type() == QEvent::ShortcutOverride) {
        event->accept();
        return true;
    }
    if (key == Qt::Key_Escape) {
        closeBar();
        return true;
    }
    return false;
}

void GridFindBar::placeUnderGrid() {
    const int height = sizeHint().height();
    setGeometry(grid_->x(), grid_->geometry().bottom() + 1, grid_->width(), height);
}

}  // namespace qivo::widgets
