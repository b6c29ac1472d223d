#include "widgets/flex_grid.h"

#include <QHeaderView>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QScrollBar>
#include <QStringList>
#include <QStyle>
#include <QStyledItemDelegate>
#include <QToolTip>
#include <algorithm>

#include "runtime/runtime_error.h"
#include "widgets/flex_grid_model.h"
#include "widgets/twips.h"

namespace qivo::widgets {

namespace {

constexpr long kBadSubscript = 381;

bool isAlignmentMark(QChar c) {
    return c == '<' || c == '^' || c == '>';
}

int alignmentOfMark(QChar mark) {
    if (mark == '^') {
        return flexAlignCenterCenter;
    }
    return mark == '>' ? flexAlignRightCenter : flexAlignLeftCenter;
}

// Fixed columns look like the header row: the button colour and never the selection's.
class FixedColumnDelegate final : public QStyledItemDelegate {
  public:
    using QStyledItemDelegate::QStyledItemDelegate;

  protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override {
        QStyledItemDelegate::initStyleOption(option, index);
        option->backgroundBrush = option->palette.button();
        option->state &= ~(QStyle::State_Selected | QStyle::State_HasFocus);
    }
};

}  // namespace

FlexGrid::FlexGrid(QWidget* parent) : QTableView(parent), model_(new FlexGridModel) {
    setModel(model_.get());
    setSelectionBehavior(SelectItems);
    setSelectionMode(SingleSelection);
    setEditTriggers(NoEditTriggers);
    setWordWrap(false);
    // Tab leaves the list for the window's next control; the arrow keys move between cells.
    setTabKeyNavigation(false);
    verticalHeader()->hide();
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 6);
    horizontalHeader()->setSectionsClickable(false);
    horizontalHeader()->setHighlightSections(false);
    connect(horizontalHeader(), &QHeaderView::sectionResized, this,
            [this](int col, int, int pixels) { rememberUserWidth(col, pixels); });
}

FlexGrid::~FlexGrid() {
    // The view must let go of the model before the model goes.
    setModel(nullptr);
}

void FlexGrid::setRows(int rows) {
    if (rows < 1) {
        throwBadSubscript();
    }
    model_->setRows(rows);
    row_ = std::min(row_, rows - 1);
    updateSelection();
}

void FlexGrid::setCols(int cols) {
    if (cols < 0) {
        throwBadSubscript();
    }
    widths_.resize(static_cast<std::size_t>(cols), defaultWidthTwips());
    formatWidths_.resize(static_cast<std::size_t>(cols), -1);
    model_->setCols(cols);
    col_ = std::clamp(col_, 0, std::max(cols - 1, 0));
    colSel_ = col_;
    applyColumnWidths();
    updateSelection();
}

void FlexGrid::setRow(int row) {
    checkCell(row, 0);
    moveTo(row, col_);
}

void FlexGrid::setCol(int col) {
    checkCell(0, col);
    moveTo(row_, col);
}

void FlexGrid::setColSel(int col) {
    checkCell(0, col);
    colSel_ = col;
    updateSelection();
}

void FlexGrid::setFixedCols(int cols) {
    if (cols < 0 || cols > Cols()) {
        throwBadSubscript();
    }
    fixedCols_ = cols;
    if (fixedLook_ == nullptr) {
        fixedLook_ = new FixedColumnDelegate(this);
    }
    for (int col = 0; col < Cols(); ++col) {
        setItemDelegateForColumn(col, col < cols ? fixedLook_ : nullptr);
    }
}

void FlexGrid::setSelectionByRow(bool byRow) {
    byRow_ = byRow;
    updateSelection();
}

QString FlexGrid::TextMatrix(int row, int col) const {
    checkCell(row, col);
    return model_->text(row, col);
}

void FlexGrid::setTextMatrix(int row, int col, const QString& text) {
    checkCell(row, col);
    model_->setText(row, col, text);
}

void FlexGrid::setTextMatrixUtf8(int row, int col, QUtf8StringView text) {
    checkCell(row, col);
    model_->setText(row, col, text);
}

void FlexGrid::AddItemUtf8(std::span<const QUtf8StringView> cells) {
    if (static_cast<int>(cells.size()) > Cols()) {
        throwBadSubscript();
    }
    model_->appendRow(cells);
}

qint32 FlexGrid::RowData(int row) const {
    checkCell(row, 0);
    return model_->rowData(row);
}

void FlexGrid::setRowData(int row, qint32 value) {
    checkCell(row, 0);
    model_->setRowData(row, value);
}

struct FlexGrid::RowsAside {
    FlexGridModel::RowsAside rows;
    int row = 0;
    int col = 0;
    int colSel = 0;
};

void FlexGrid::setRowsAside() {
    aside_.reset(new RowsAside{model_->setRowsAside(), row_, col_, colSel_});
    row_ = 0;
    updateSelection();
}

void FlexGrid::dropRowsAside() {
    aside_.reset();
}

void FlexGrid::putRowsBack() {
    if (!aside_) {
        return;
    }
    model_->putRowsBack(std::move(aside_->rows));
    row_ = aside_->row;
    col_ = aside_->col;
    colSel_ = aside_->colSel;
    aside_.reset();
    updateSelection();
}

int FlexGrid::ColWidth(int col) const {
    checkCell(0, col);
    return widths_[static_cast<std::size_t>(col)];
}

void FlexGrid::setColWidth(int col, int twips) {
    checkCell(0, col);
    widths_[static_cast<std::size_t>(col)] = std::max(twips, 0);
    applyColumnWidth(col);
    giveWay();
}

void FlexGrid::setGivingWay(std::vector<std::vector<int>> groups) {
    for (const std::vector<int>& group : groups) {
        for (const int col : group) {
            checkCell(0, col);
        }
    }
    givingWay_ = std::move(groups);
    giveWay();
}

int FlexGrid::ColAlignment(int col) const {
    checkCell(0, col);
    return model_->alignment(col);
}

void FlexGrid::setColAlignment(int col, int code) {
    checkCell(0, col);
    model_->setAlignment(col, code);
}

int FlexGrid::ColAlignmentFixed(int col) const {
    checkCell(0, col);
    return model_->fixedAlignment(col);
}

void FlexGrid::setColAlignmentFixed(int col, int code) {
    checkCell(0, col);
    model_->setFixedAlignment(col, code);
}

void FlexGrid::setCellForeColor(quint32 bgr) {
    checkCell(row_, col_);
    model_->setForeColor(row_, fillFirst(), fillLast(), bgr);
}

void FlexGrid::setCellBackColor(quint32 bgr) {
    checkCell(row_, col_);
    model_->setBackColor(row_, fillFirst(), fillLast(), bgr);
}

quint32 FlexGrid::cellForeColor(int row, int col) const {
    checkCell(row, col);
    return model_->foreColor(row, col);
}

quint32 FlexGrid::cellBackColor(int row, int col) const {
    checkCell(row, col);
    return model_->backColor(row, col);
}

void FlexGrid::RemoveItem(int row) {
    if (row < 1) {
        throwBadSubscript();
    }
    checkCell(row, 0);
    model_->removeGridRow(row);
    row_ = std::min(row_, Rows() - 1);
    updateSelection();
}

void FlexGrid::setFormatString(const QString& format) {
    const QStringList segments = format.split('|');
    setCols(static_cast<int>(segments.size()));
    for (int col = 0; col < Cols(); ++col) {
        QString segment = segments[col];
        const bool marked = !segment.isEmpty() && isAlignmentMark(segment.front());
        const int code = marked ? alignmentOfMark(segment.front()) : flexAlignLeftCenter;
        model_->setAlignment(col, code);
        model_->setFixedAlignment(col, code);
        if (marked) {
            segment.remove(0, 1);
        }
        const int width = formatWidthTwips(segment);
        formatWidths_[static_cast<std::size_t>(col)] = width;
        widths_[static_cast<std::size_t>(col)] = width;
        while (segment.endsWith(' ')) {
            segment.chop(1);
        }
        model_->setText(0, col, segment);
    }
    formatString_ = format;
    applyColumnWidths();
}

std::vector<int> FlexGrid::rowsContaining(const QString& text) const {
    std::vector<int> shown;
    for (int col = 0; col < Cols(); ++col) {
        if (widths_[static_cast<std::size_t>(col)] > 0) {
            shown.push_back(col);
        }
    }
    QString lower = text;
    for (QChar& c : lower) {
        if (c >= u'A' && c <= u'Z') {
            c = c.toLower();
        }
    }
    const QByteArray needle = lower.toUtf8();
    return model_->rowsContaining(QUtf8StringView(needle), shown);
}

void FlexGrid::showRow(int row) {
    checkCell(row, 0);
    // Through the leftmost column in view: the current one may be the hidden key column, which
    // the view does not scroll to, and the list should not move sideways.
    const int col = columnAt(0);
    if (row > 0 && col >= 0 && model_->isLive()) {
        scrollTo(model_->index(row - 1, col));
    }
}

// The blanks behind a header text are there to widen the column: the segment, blanks and all,
// as the grid's font draws it, inside the cell's own margins.
int FlexGrid::formatWidthTwips(const QString& segment) const {
    if (segment.isEmpty()) {
        return defaultWidthTwips();
    }
    return pixelsToTwips(fontMetrics().horizontalAdvance(segment) + textMargins());
}

int FlexGrid::textMargins() const {
    return 2 * (style()->pixelMetric(QStyle::PM_FocusFrameHMargin, nullptr, this) + 1);
}

// Columns still as wide as the format string made them follow a new font.
void FlexGrid::refitFormatWidths() {
    const QStringList segments = formatString_.split('|');
    for (int col = 0; col < Cols() && col < segments.size(); ++col) {
        QString segment = segments[col];
        if (!segment.isEmpty() && isAlignmentMark(segment.front())) {
            segment.remove(0, 1);
        }
        const auto at = static_cast<std::size_t>(col);
        const int fitted = formatWidthTwips(segment);
        if (widths_[at] == formatWidths_[at]) {
            widths_[at] = fitted;
        }
        formatWidths_[at] = fitted;
    }
    applyColumnWidths();
}

QRect FlexGrid::cellRect(int row, int col) const {
    checkCell(row, col);
    if (row == 0) {
        const QHeaderView* header = horizontalHeader();
        return {header->sectionViewportPosition(col), 0, header->sectionSize(col),
                header->height()};
    }
    return visualRect(model_->index(row - 1, col));
}

int FlexGrid::shownColumnsWidth() const {
    int pixels = 0;
    for (const int twips : widths_) {
        pixels += twipsToPixels(twips);
    }
    return pixels;
}

void FlexGrid::showEvent(QShowEvent* event) {
    QTableView::showEvent(event);
    if (!model_->isLive()) {
        model_->setLive(true);
        applyColumnWidths();
        updateSelection();
    }
}

void FlexGrid::resizeEvent(QResizeEvent* event) {
    QTableView::resizeEvent(event);
    giveWay();
}

void FlexGrid::changeEvent(QEvent* event) {
    QTableView::changeEvent(event);
    if (event->type() == QEvent::FontChange) {
        verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 6);
        refitFormatWidths();
    }
}

// A cell too narrow for its text shows the whole text as its tool tip.
bool FlexGrid::viewportEvent(QEvent* event) {
    if (event->type() != QEvent::ToolTip) {
        return QTableView::viewportEvent(event);
    }
    const auto* help = static_cast<QHelpEvent*>(event);
    const QModelIndex cell = indexAt(help->pos());
    const QString text = cell.isValid() ? TextMatrix(cell.row() + 1, cell.column()) : QString();
    const QRect place = visualRect(cell);
    if (fontMetrics().horizontalAdvance(text) + textMargins() > place.width()) {
        QToolTip::showText(help->globalPos(), text, viewport(), place);
    } else {
        QToolTip::hideText();
    }
    return true;
}

void FlexGrid::hideEvent(QHideEvent* event) {
    QTableView::hideEvent(event);
    // A minimised window stays visible; only a real hide stops the view's updates.
    if (!isVisible()) {
        model_->setLive(false);
    }
}

void FlexGrid::mousePressEvent(QMouseEvent* event) {
    pressed_ = false;
    if (event->button() != Qt::LeftButton) {
        event->accept();
        return;
    }
    QTableView::mousePressEvent(event);
    const QModelIndex cell = indexAt(event->position().toPoint());
    if (cell.isValid()) {
        moveTo(cell.row() + 1, userColumn(cell.column()));
        pressed_ = true;
    }
}

void FlexGrid::mouseReleaseEvent(QMouseEvent* event) {
    QTableView::mouseReleaseEvent(event);
    const bool click = pressed_ && event->button() == Qt::LeftButton &&
                       indexAt(event->position().toPoint()).isValid();
    pressed_ = false;
    if (click) {
        Q_EMIT Click();
    }
}

void FlexGrid::mouseDoubleClickEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) {
        event->accept();
        return;
    }
    QTableView::mouseDoubleClickEvent(event);
    // The release that ends a double-click is no second Click.
    pressed_ = false;
    if (indexAt(event->position().toPoint()).isValid()) {
        Q_EMIT DblClick();
    }
}

void FlexGrid::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
        case Qt::Key_Return:
        case Qt::Key_Enter:
            event->accept();
            Q_EMIT KeyPress(13);
            return;
        case Qt::Key_Space:
            event->accept();
            Q_EMIT KeyPress(32);
            return;
        case Qt::Key_Escape:
            event->ignore();
            return;
        default: {
            const int before = row_;
            QTableView::keyPressEvent(event);
            if (row_ != before) {
                Q_EMIT RowColChange();
            }
        }
    }
}

QItemSelectionModel::SelectionFlags FlexGrid::selectionCommand(const QModelIndex&,
                                                               const QEvent*) const {
    // The selection always follows Row, Col and ColSel; see updateSelection().
    return QItemSelectionModel::NoUpdate;
}

void FlexGrid::currentChanged(const QModelIndex& current, const QModelIndex& previous) {
    QTableView::currentChanged(current, previous);
    // Keyboard moves; the grid's own moves already match Row and Col.
    if (current.isValid() && (current.row() + 1 != row_ || current.column() != col_)) {
        moveTo(current.row() + 1, userColumn(current.column()));
    }
}

// A user's click or key that lands on a fixed column picks the row at its first other column.
int FlexGrid::userColumn(int col) const {
    return fixedCols_ < Cols() ? std::max(col, fixedCols_) : col;
}

void FlexGrid::setFillStyle(int style) {
    fillStyle_ = style;
}

int FlexGrid::fillFirst() const {
    return fillStyle_ == flexFillRepeat ? std::min(col_, colSel_) : col_;
}

int FlexGrid::fillLast() const {
    return fillStyle_ == flexFillRepeat ? std::max(col_, colSel_) : col_;
}

void FlexGrid::throwBadSubscript() {
    throw runtime::RuntimeError(kBadSubscript, QStringLiteral("下标越界"));
}

void FlexGrid::moveTo(int row, int col) {
    row_ = row;
    col_ = col;
    colSel_ = col;
    updateSelection();
}

void FlexGrid::updateSelection() {
    if (!model_->isLive()) {
        return;
    }
    QItemSelectionModel* selection = selectionModel();
    if (row_ < 1 || Cols() == 0) {
        selection->clear();
        return;
    }
    const int first = byRow_ ? 0 : std::min(col_, colSel_);
    const int last = byRow_ ? Cols() - 1 : std::max(col_, colSel_);
    // Row and Col set from code leave the list where it is; only the user's own moves scroll it.
    const bool scrolls = hasAutoScroll();
    setAutoScroll(false);
    selection->setCurrentIndex(model_->index(row_ - 1, col_), QItemSelectionModel::NoUpdate);
    setAutoScroll(scrolls);
    selection->select(QItemSelection(model_->index(row_ - 1, first), model_->index(row_ - 1, last)),
                      QItemSelectionModel::ClearAndSelect);
}

int FlexGrid::defaultWidthTwips() const {
    return pixelsToTwips(horizontalHeader()->defaultSectionSize());
}

void FlexGrid::applyColumnWidth(int col) {
    // The header forgets section sizes whenever the model resets, so widths wait for the show.
    if (!model_->isLive()) {
        return;
    }
    const int twips = widths_[static_cast<std::size_t>(col)];
    applyingWidths_ = true;
    setColumnHidden(col, twips == 0);
    if (twips > 0) {
        setColumnWidth(col, twipsToPixels(twips));
    }
    applyingWidths_ = false;
}

void FlexGrid::applyColumnWidths() {
    for (int col = 0; col < Cols(); ++col) {
        applyColumnWidth(col);
    }
    giveWay();
}

// The vertical scroll bar's room is kept whether it shows or not, so that a longer list does
// not push the last column out of view.
void FlexGrid::giveWay() {
    if (!model_->isLive() || givingWay_.empty()) {
        return;
    }
    // Columns that do not give way are as wide as the header lets them be.
    int shown = 0;
    for (int col = 0; col < Cols(); ++col) {
        if (!isColumnHidden(col)) {
            shown += std::max(twipsToPixels(widths_[static_cast<std::size_t>(col)]),
                              horizontalHeader()->minimumSectionSize());
        }
    }
    const int room = width() - 2 * frameWidth() - verticalScrollBar()->sizeHint().width();
    int excess = shown - room;
    applyingWidths_ = true;
    for (const std::vector<int>& group : givingWay_) {
        excess -= narrowGroup(group, std::max(excess, 0));
    }
    applyingWidths_ = false;
}

int FlexGrid::narrowGroup(const std::vector<int>& group, int excess) {
    std::vector<int> wanted;
    std::vector<int> least;
    int spare = 0;
    for (const int col : group) {
        wanted.push_back(std::max(twipsToPixels(widths_[static_cast<std::size_t>(col)]),
                                  horizontalHeader()->minimumSectionSize()));
        least.push_back(std::min(wanted.back(), narrowestPixels(col)));
        spare += wanted.back() - least.back();
    }
    const int shed = std::min(excess, spare);
    // The widest narrow to a common width, the cap, each no further than its least width.
    const auto widthAt = [&](std::size_t i, int cap) {
        return std::max(least[i], std::min(wanted[i], cap));
    };
    const auto totalAt = [&](int cap) {
        int total = 0;
        for (std::size_t i = 0; i < group.size(); ++i) {
            total += widthAt(i, cap);
        }
        return total;
    };
    int total = 0;
    for (const int width : wanted) {
        total += width;
    }
    const int target = total - shed;
    int low = 0;
    int high = *std::max_element(wanted.begin(), wanted.end());
    while (low < high) {
        const int cap = (low + high) / 2;
        if (totalAt(cap) >= target) {
            high = cap;
        } else {
            low = cap + 1;
        }
    }
    int over = totalAt(low) - target;
    for (std::size_t i = 0; i < group.size(); ++i) {
        int width = widthAt(i, low);
        if (over > 0 && width == low && width > least[i]) {
            --width;
            --over;
        }
        if (!isColumnHidden(group[i])) {
            setColumnWidth(group[i], width);
        }
    }
    return shed;
}

int FlexGrid::narrowestPixels(int col) const {
    const int header = fontMetrics().horizontalAdvance(model_->text(0, col));
    const int fourCharacters = fontMetrics().horizontalAdvance(QStringLiteral("国国国国"));
    return std::max(std::max(header, fourCharacters) + textMargins(),
                    horizontalHeader()->minimumSectionSize());
}

void FlexGrid::rememberUserWidth(int col, int pixels) {
    if (!applyingWidths_ && pixels > 0 && col < Cols()) {
        widths_[static_cast<std::size_t>(col)] = pixelsToTwips(pixels);
    }
}

}  // namespace qivo::widgets
