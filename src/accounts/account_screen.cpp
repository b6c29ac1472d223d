#include "accounts/account_screen.h"

#include <QAction>
#include <QDate>
#include <QDir>
#include <QScopeGuard>
#include <QScrollBar>
#include <QStyle>
#include <algorithm>

#include "accounts/grid_field.h"
#include "database/ado.h"
#include "session/connection.h"
#include "session/session_values.h"
#include "widgets/error_path.h"
#include "widgets/grid_export.h"
#include "widgets/msgbox.h"
#include "widgets/twips.h"

namespace qivo {

namespace {

constexpr int kTitleHeight = 450;
constexpr int kGridFooter = 150;  // between the list grid and the status bar
constexpr int kRowStep = 450;
constexpr int kBoxHeight = 330;
constexpr int kLabelGap = 100;
// How much narrower a box of the detail panel may become on a small screen.
constexpr int kMostBoxCut = 1800;

// Status bar panels beside the operator's name and post.
constexpr int kCountPanel = 4;
constexpr int kDonePanel = 5;
constexpr int kNotReloadedPanel = 6;

// Labels of the registration's boxes Text1(0..4).
constexpr std::array<const char16_t*, 5> kAccountLabels{u"Qivo号", u"地   址", u"姓   名",
                                                        u"身份证", u"移动电话"};

// The owner's boxes and their 业主表 columns, in design order.
struct OwnerField {
    const char16_t* label;
    const char16_t* column;
};
constexpr std::array<OwnerField, 11> kOwnerFields{{
    {u"业主姓名", u"姓名"},
    {u"固定电话", u"固定电话"},
    {u"移动电话", u"移动电话"},
    {u"身 份 证", u"身份证"},
    {u"购房日期", u"购房日期"},
    {u"收房日期", u"收楼日期"},
    {u"进户日期", u"进户日期"},
    {u"开始收费日期", u"开始收费日期"},
    {u"职业信息", u"工作单位"},
    {u"户籍（国籍）", u"户籍所在地"},
    {u"备    注", u"备注"},
}};

// List grid column of each registration box Text1(0..4).
constexpr std::array<int, 5> kAccountCellColumns{3, 2, 4, 5, 6};

// Result columns shown in list grid columns 1 to 6.
constexpr std::array<const char16_t*, 6> kListColumns{u"项目", u"dz",     u"Qivo号",
                                                      u"姓名", u"身份证", u"手机"};

}  // namespace

QString groupThousands(int count) {
    QString digits = QString::number(count);
    for (qsizetype at = digits.size() - 3; at > 0; at -= 3) {
        digits.insert(at, u' ');
    }
    return digits;
}

QString accountListColumns() {
    return formatColumn('<', QStringLiteral("序"), 4) + '|' +
           formatColumn('<', QStringLiteral("项目名称"), 43) + '|' +
           formatColumn('<', QStringLiteral("地址"), 63) + '|' +
           formatColumn('<', QStringLiteral("Qivo号"), 38) + '|' +
           formatColumn('<', QStringLiteral("姓名"), 6) + '|' +
           formatColumn('<', QStringLiteral("身份证号"), 39) + '|' +
           formatColumn('<', QStringLiteral("手机号"), 23) + '|';
}

AccountScreen::AccountScreen(const AccountScreenDesign& design, QWidget* parent)
    : widgets::Form(parent), design_(design) {
    Label1[0] = addHeading(design.title, {120, 0, 2400, kTitleHeight}, this);
    MSFlexGrid1 = new widgets::FlexGrid(this);
    MSFlexGrid1->setFormatString(design.listFormat);
    MSFlexGrid1->setSelectionByRow(true);
    // On a small screen or at a large scale the estate and the address give way first, then the
    // registration's numbers, so that the action column stays in view.
    MSFlexGrid1->setGivingWay({{1, 2}, {3, 5, 6}});
    widgets::setTwipsGeometry(MSFlexGrid1, {90, kTitleHeight, 12000, 6000});
    FindBar1 = new widgets::GridFindBar(MSFlexGrid1, this);
    widgets::onEvent(FindBar1, &widgets::GridFindBar::openedOrClosed, this,
                     [this] { Form_Resize(); });
    StatusBar1 = new widgets::StatusBar(this, 3);
    StatusBar1->setPanelText(1, QStringLiteral("操作员"));
    StatusBar1->addPanel(0);
    StatusBar1->addPanel(2);
    StatusBar1->addPanel(0);
    StatusBar1->installEventFilter(this);
    buildPanel();
    addExportAction();
    // The list has the keyboard first: arrow keys move along it, Enter opens a row.
    MSFlexGrid1->setFocus();
    connect(MSFlexGrid1, &widgets::FlexGrid::KeyPress, this,
            [this](int keyAscii) { widgets::guarded([&] { MSFlexGrid1_KeyPress(keyAscii); }); });
}

void AccountScreen::MSFlexGrid1_KeyPress(int keyAscii) {
    if (keyAscii == 13) {
        MSFlexGrid1_DblClick();
    }
}

bool AccountScreen::eventFilter(QObject* watched, QEvent* event) {
    if (watched == StatusBar1 && event->type() == QEvent::LayoutRequest) {
        widgets::guarded([this] { Form_Resize(); });
    }
    return widgets::Form::eventFilter(watched, event);
}

bool AccountScreen::focusNextPrevChild(bool next) {
    if (!Picture1->isVisible()) {
        return widgets::Form::focusNextPrevChild(next);
    }
    std::vector<QWidget*> ring{MSFlexGrid1};
    for (QWidget* w = Picture1->nextInFocusChain(); w != Picture1; w = w->nextInFocusChain()) {
        if (Picture1->isAncestorOf(w) && w->isVisibleTo(this) && w->isEnabled() &&
            (w->focusPolicy() & Qt::TabFocus) != 0) {
            ring.push_back(w);
        }
    }
    const auto at = std::find(ring.begin(), ring.end(), focusWidget());
    if (at == ring.end()) {
        return widgets::Form::focusNextPrevChild(next);
    }
    const auto size = static_cast<std::ptrdiff_t>(ring.size());
    const std::ptrdiff_t index = (at - ring.begin() + (next ? 1 : size - 1)) % size;
    QWidget* target = ring[static_cast<std::size_t>(index)];
    target->setFocus(next ? Qt::TabFocusReason : Qt::BacktabFocusReason);
    Picture1->ensureWidgetVisible(target);
    return true;
}

// Ctrl+E anywhere in the window, and the list's context menu.
void AccountScreen::addExportAction() {
    auto* exportList = new QAction(QStringLiteral("导出列表为 CSV…"), this);
    exportList->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_E));
    exportList->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    widgets::onEvent(exportList, &QAction::triggered, this, [this] { ExportList(); });
    addAction(exportList);
    MSFlexGrid1->addAction(exportList);
    MSFlexGrid1->setContextMenuPolicy(Qt::ActionsContextMenu);
}

// The action column, the one before the hidden key, is a link on the screen and no data.
void AccountScreen::ExportList() {
    const QString path = widgets::exportGridCsv(
        *MSFlexGrid1, this,
        design_.title + '-' + QDate::currentDate().toString(QStringLiteral("yyyyMMdd")) + ".csv",
        {MSFlexGrid1->Cols() - 2});
    if (!path.isEmpty()) {
        StatusBar1->setPanelText(kDonePanel, QStringLiteral("已导出 %1 行：%2")
                                                 .arg(groupThousands(MSFlexGrid1->Rows() - 1),
                                                      QDir::toNativeSeparators(path)));
    }
}

QLabel* AccountScreen::addLabel(const QString& text, const widgets::TwipsRect& place,
                                QWidget* parent) {
    auto* label = new QLabel(text, parent);
    label->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    widgets::setTwipsGeometry(label, place);
    return label;
}

QLabel* AccountScreen::addHeading(const QString& text, const widgets::TwipsRect& place,
                                  QWidget* parent) {
    QLabel* heading = addLabel(text, place, parent);
    heading->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    heading->setStyleSheet(QStringLiteral("font-weight: bold; color: #1f4e8c;"));
    return heading;
}

void AccountScreen::buildPanel() {
    Picture1 = new PanelArea(this);
    Picture1->setFrameShape(QFrame::NoFrame);
    Picture1->setFocusPolicy(Qt::NoFocus);
    panelPage_ = new QFrame;
    panelPage_->setObjectName(QStringLiteral("Picture1Page"));
    panelPage_->setStyleSheet(QStringLiteral(
        "QFrame#Picture1Page { border: 1px solid #7a8ca5; background: qlineargradient(x1:0, "
        "y1:0, x2:0, y2:1, stop:0 #f4f8fd, stop:1 #dfe9f5); }"));
    widgets::setTwipsGeometry(panelPage_, design_.panel);
    Picture1->setWidget(panelPage_);
    buttonBar_ = new QFrame(Picture1);
    buttonBar_->setObjectName(QStringLiteral("Picture1Buttons"));
    buttonBar_->setStyleSheet(QStringLiteral(
        "QFrame#Picture1Buttons { border: 1px solid #7a8ca5; background: #dfe9f5; }"));
    buttonBar_->hide();
    widgets::setTwipsGeometry(Picture1, design_.panel);
    const int closeSize = 360;
    Image1 = new widgets::ImageButton(
        style()->standardIcon(QStyle::SP_TitleBarCloseButton).pixmap(16, 16), panelPage_);
    Image1->setToolTip(QStringLiteral("关闭"));
    widgets::setTwipsGeometry(Image1,
                              {design_.panel.width - closeSize - 120, 120, closeSize, closeSize});
    buildAccountFields(design_.accountFields);
    buildOwnerFields(design_.ownerFields);
    Picture1->hide();

    using widgets::onEvent;
    onEvent(Image1, &widgets::ImageButton::MouseDown, this, [this] { Image1_MouseDown(); });
    onEvent(Image1, &widgets::ImageButton::MouseUp, this, [this] { Image1_MouseUp(); });
    onEvent(Image1, &widgets::ImageButton::Click, this, [this] { Image1_Click(); });
}

void AccountScreen::buildAccountFields(QPoint origin) {
    for (std::size_t i = 0; i < Text1.size(); ++i) {
        Text1[i] = addField(QString::fromUtf16(kAccountLabels[i]), origin, static_cast<int>(i),
                            {1000, 3600});
    }
}

void AccountScreen::buildOwnerFields(QPoint origin) {
    for (std::size_t i = 0; i < Text2.size(); ++i) {
        Text2[i] = addField(QString::fromUtf16(kOwnerFields[i].label), origin, static_cast<int>(i),
                            {1400, 3800});
    }
}

// A label and its read-only box on line `line` of a column of fields starting at `origin`.
widgets::TextBox* AccountScreen::addField(const QString& label, QPoint origin, int line,
                                          QSize widths) {
    const int top = origin.y() + line * kRowStep;
    addLabel(label, {origin.x(), top, widths.width(), kBoxHeight}, panelPage_);
    auto* box = new widgets::TextBox(panelPage_);
    box->setReadOnly(true);
    widgets::setTwipsGeometry(
        box, {origin.x() + widths.width() + kLabelGap, top, widths.height(), kBoxHeight});
    return box;
}

// Each step leaves its control as it was when the window is too small for it.
void AccountScreen::Form_Resize() {
    dockStatusBar();
    const int width = ScaleWidth();
    const int height = ScaleHeight();
    const auto apply = [](int value, int& target) {
        if (value >= 0) {
            target = value;
        }
    };

    // An open find bar takes its room from the list, above the status bar.
    const int findRoom =
        FindBar1->isVisible() ? widgets::pixelsToTwips(FindBar1->sizeHint().height()) : 0;
    widgets::TwipsRect grid = widgets::twipsGeometry(MSFlexGrid1);
    apply(height - widgets::twipsGeometry(Label1[0]).height -
              widgets::twipsGeometry(StatusBar1).height - kGridFooter - findRoom,
          grid.height);
    apply(width - design_.gridMargin, grid.width);
    widgets::setTwipsGeometry(MSFlexGrid1, grid);

    // A panel too large for the list scrolls up and down only, its scroll bar beside the page,
    // its buttons kept in reach below it; a page wider than the list narrows its boxes.
    widgets::TwipsRect panel = widgets::twipsGeometry(Picture1);
    panel.height = std::min(design_.panel.height, grid.height);
    const bool scrolls = panel.height < design_.panel.height || design_.panel.width > grid.width;
    const int scrollBar =
        scrolls ? widgets::pixelsToTwips(Picture1->verticalScrollBar()->sizeHint().width()) : 0;
    const int cut = std::clamp(design_.panel.width + scrollBar - grid.width, 0, kMostBoxCut * 2);
    panel.width = std::min(design_.panel.width - cut + scrollBar, grid.width);
    apply(grid.top + (grid.height - panel.height) / 2, panel.top);
    apply(grid.left + (grid.width - panel.width) / 2, panel.left);
    widgets::setTwipsGeometry(Picture1, panel);
    narrowPanelPage(cut);
    keepPanelButtonsInReach(scrolls);

    widgets::TwipsRect refresh = widgets::twipsGeometry(Command4);
    widgets::TwipsRect exit = widgets::twipsGeometry(Command5);
    apply(width - refresh.width - exit.width - design_.refreshGap, refresh.left);
    apply(width - exit.width - design_.exitMargin, exit.left);
    widgets::setTwipsGeometry(Command4, refresh);
    widgets::setTwipsGeometry(Command5, exit);
}

// Each column of boxes gives half of `cut`: its boxes narrow by that much and the owner's column
// moves left by it; what spans both columns narrows by all of it, and the close image keeps to
// the right edge.
void AccountScreen::narrowPanelPage(int cut) {
    if (pagePlaces_.empty()) {
        for (QWidget* child : panelPage_->findChildren<QWidget*>(Qt::FindDirectChildrenOnly)) {
            const bool button =
                std::any_of(panelButtons_.begin(), panelButtons_.end(),
                            [child](const PanelButton& b) { return b.button == child; });
            if (!button) {
                pagePlaces_.emplace_back(child, child->geometry());
            }
        }
    }
    // In pixels, as the controls were placed: a design place in twips may fall between two.
    const int all = widgets::twipsToPixels(cut + widgets::kTwipsPerPixel - 1);
    const int half = all / 2;
    const int ownerLeft = widgets::twipsToPixels(design_.ownerFields.x());
    const auto isBox = [this](const QWidget* widget) {
        return std::find(Text1.begin(), Text1.end(), widget) != Text1.end() ||
               std::find(Text2.begin(), Text2.end(), widget) != Text2.end();
    };
    for (auto [widget, place] : pagePlaces_) {
        if (widget == Image1) {
            place.translate(-all, 0);
        } else if (place.left() >= ownerLeft) {
            place.translate(-half, 0);
            place.setWidth(place.width() - (isBox(widget) ? half : 0));
        } else if (place.right() >= ownerLeft) {
            place.setWidth(place.width() - all);
        } else if (isBox(widget)) {
            place.setWidth(place.width() - half);
        }
        widget->setGeometry(place);
    }
    panelPage_->resize(widgets::twipsToPixels(design_.panel.width) - all,
                       widgets::twipsToPixels(design_.panel.height));
}

void AccountScreen::setPanelButtons(std::vector<QPushButton*> buttons) {
    panelButtons_.clear();
    for (QPushButton* button : buttons) {
        panelButtons_.push_back({button, button->geometry()});
    }
}

// While the page scrolls, its buttons stand in a bar below it, in their design order from the
// left; otherwise they are in their design places on the page.
void AccountScreen::keepPanelButtonsInReach(bool pageScrolls) {
    if (panelButtons_.empty()) {
        return;
    }
    constexpr int kBarGap = 4;
    int barHeight = 0;
    for (const PanelButton& button : panelButtons_) {
        barHeight = std::max(barHeight, button.designPlace.height() + 2 * kBarGap);
    }
    buttonBar_->setVisible(pageScrolls);
    Picture1->setBottomRoom(pageScrolls ? barHeight : 0);
    buttonBar_->setGeometry(0, Picture1->height() - barHeight, Picture1->width(), barHeight);
    int left = kBarGap;
    for (const PanelButton& button : panelButtons_) {
        QWidget* home = pageScrolls ? buttonBar_ : panelPage_;
        if (button.button->parentWidget() != home) {
            button.button->setParent(home);
            button.button->show();
        }
        if (pageScrolls) {
            button.button->setGeometry({QPoint(left, kBarGap), button.designPlace.size()});
            left += button.designPlace.width() + kBarGap;
        } else {
            button.button->setGeometry(button.designPlace);
        }
    }
}

// The status bar keeps to the bottom edge at its own height.
void AccountScreen::dockStatusBar() {
    const int barHeight = StatusBar1->sizeHint().height();
    StatusBar1->setGeometry(0, height() - barHeight, width(), barHeight);
}

void AccountScreen::Image1_MouseDown() {
    Image1->setBorderStyle(1);
}

void AccountScreen::Image1_MouseUp() {
    Image1->setBorderStyle(0);
}

void AccountScreen::Image1_Click() {
    closePanel();
}

void AccountScreen::ClearAccountFields() {
    for (widgets::TextBox* box : Text1) {
        box->setText({});
    }
}

void AccountScreen::ClearOwnerFields() {
    for (widgets::TextBox* box : Text2) {
        box->setText({});
    }
}

void AccountScreen::prepareListGrid() {
    MSFlexGrid1->setRows(1);
    MSFlexGrid1->setColWidth(MSFlexGrid1->Cols() - 1, 0);
    for (int col = 0; col < MSFlexGrid1->Cols(); ++col) {
        MSFlexGrid1->setColAlignmentFixed(col, widgets::flexAlignCenterCenter);
    }
}

void AccountScreen::showSignedInUser() {
    StatusBar1->setPanelText(2, CurrentUserName);
    QStringList post{CurrentDeptName, CurrentPostName};
    post.removeAll(QString());
    StatusBar1->setPanelText(3, post.join(u' '));
}

void AccountScreen::copyAccountCells(int row) {
    for (std::size_t i = 0; i < Text1.size(); ++i) {
        Text1[i]->setText(MSFlexGrid1->TextMatrix(row, kAccountCellColumns[i]));
    }
}

void AccountScreen::fillOwnerFields(const database::Recordset& owner) {
    Text2[0]->setText(
        database::requireText(owner.Fields(QString::fromUtf16(kOwnerFields[0].column))));
    for (std::size_t i = 1; i < Text2.size(); ++i) {
        Text2[i]->setText(
            database::fieldText(owner.Fields(QString::fromUtf16(kOwnerFields[i].column))));
    }
}

void AccountScreen::fillList(
    const QString& sql, const std::function<void(int row, const database::Recordset&)>& finishRow) {
    database::Recordset record;
    record.Open(sql, Connection::cn());
    // Hiding the list would send the keyboard on to the next control; it comes back.
    const bool hadKeyboard = MSFlexGrid1->hasFocus();
    MSFlexGrid1->setVisible(false);
    bool filled = false;
    const auto showAgain = qScopeGuard([this, hadKeyboard, &filled] {
        MSFlexGrid1->setVisible(true);
        if (filled) {
            showListCount();
            showCurrentLine(1);
        }
        if (hadKeyboard) {
            MSFlexGrid1->setFocus();
        }
    });
    // Rows may still be arriving while the first are listed; a read that fails on the way
    // leaves the list as it was.
    MSFlexGrid1->setRowsAside();
    try {
        fillRows(record, finishRow);
    } catch (...) {
        MSFlexGrid1->putRowsBack();
        throw;
    }
    MSFlexGrid1->dropRowsAside();
    filled = true;
}

void AccountScreen::fillRows(
    database::Recordset& record,
    const std::function<void(int row, const database::Recordset&)>& finishRow) {
    // Every row reads the same fields: they are found by name once.
    const int registrationField = record.fieldPosition(QStringLiteral("HLWID"));
    const int keyField = record.fieldPosition(QStringLiteral("Zh_id"));
    std::vector<int> listFields;
    for (const char16_t* column : kListColumns) {
        listFields.push_back(record.fieldPosition(QString::fromUtf16(column)));
    }
    // The banding colours a row's cells at once.
    MSFlexGrid1->setFillStyle(widgets::flexFillRepeat);
    const auto oneCell =
        qScopeGuard([this] { MSFlexGrid1->setFillStyle(widgets::flexFillSingle); });
    std::vector<QUtf8StringView> cells(static_cast<std::size_t>(MSFlexGrid1->Cols()));
    std::vector<CellText> held(cells.size());
    while (!record.Eof()) {
        const int row = MSFlexGrid1->Rows();
        cells[0] = numberText(row, held[0]);
        for (std::size_t i = 0; i < listFields.size(); ++i) {
            cells[i + 1] = fieldUtf8Text(record, listFields[i], held[i + 1]);
        }
        cells.back() = fieldUtf8Text(record, keyField, held.back());
        MSFlexGrid1->AddItemUtf8(cells);
        MSFlexGrid1->setRow(row);
        MSFlexGrid1->setRowData(row, fieldInt(record, registrationField));
        finishRow(row, record);
        if (row % 2 == 0) {
            MSFlexGrid1->setCol(1);
            MSFlexGrid1->setColSel(MSFlexGrid1->Cols() - 1);
            MSFlexGrid1->setCellBackColor(kBandColor);
        }
        record.MoveNext();
    }
}

QString AccountScreen::listCount() const {
    return design_.countText.arg(groupThousands(MSFlexGrid1->Rows() - 1));
}

void AccountScreen::showListCount() {
    StatusBar1->setPanelText(kCountPanel, listCount());
    StatusBar1->setPanelText(kNotReloadedPanel, {});
}

void AccountScreen::showListNotReloaded(const std::exception& error) {
    StatusBar1->setPanelText(kCountPanel, listCount() + QStringLiteral("（未刷新）"));
    StatusBar1->setPanelText(kNotReloadedPanel,
                             QStringLiteral("列表未能刷新：") + widgets::errorDescription(error));
}

void AccountScreen::showCurrentLine(int line) {
    if (MSFlexGrid1->Rows() < 2) {
        return;
    }
    const int row = std::clamp(line, 1, MSFlexGrid1->Rows() - 1);
    MSFlexGrid1->setRow(row);
    MSFlexGrid1->setCol(MSFlexGrid1->FixedCols());
    MSFlexGrid1->showRow(row);
}

QString AccountScreen::openedAccount() const {
    return Text1[2]->text().trimmed() + ' ' + Text1[1]->text().trimmed();
}

void AccountScreen::reportDone(const QString& done, const QString& account) {
    StatusBar1->setPanelText(kDonePanel, done + "：" + account);
}

void AccountScreen::reportOwnerNotRead(const std::exception& error) {
    const auto* runtimeError = dynamic_cast<const runtime::RuntimeError*>(&error);
    StatusBar1->setPanelText(kDonePanel, QStringLiteral("业主资料未能读取：") +
                                             (runtimeError ? runtimeError->description()
                                                           : QString::fromLocal8Bit(error.what())));
}

void AccountScreen::setSmallestSize(std::initializer_list<const QWidget*> titleRow) {
    constexpr int kGap = 120;
    int titleRight = 0;
    for (const QWidget* control : titleRow) {
        const widgets::TwipsRect place = widgets::twipsGeometry(control);
        titleRight = std::max(titleRight, place.left + place.width);
    }
    const int corner = widgets::twipsGeometry(Command4).width +
                       widgets::twipsGeometry(Command5).width + design_.refreshGap;
    const int width =
        std::max(design_.panel.width + design_.gridMargin, titleRight + kGap + corner);
    const int height = kTitleHeight + kGridFooter + design_.panel.height +
                       widgets::pixelsToTwips(StatusBar1->sizeHint().height());
    const auto pixels = [](int twips) {
        return (twips + widgets::kTwipsPerPixel - 1) / widgets::kTwipsPerPixel;
    };
    setMinimumSize(pixels(width), pixels(height));
}

void AccountScreen::openWideEnoughForList() {
    const int list = MSFlexGrid1->shownColumnsWidth() + 2 * MSFlexGrid1->frameWidth() +
                     MSFlexGrid1->verticalScrollBar()->sizeHint().width();
    resize(std::max(width(), list + widgets::twipsToPixels(design_.gridMargin)), height());
}

void AccountScreen::openPanel(int row) {
    opened_ = Opened{MSFlexGrid1->RowData(row), row};
    Picture1->setVisible(true);
    Picture1->raise();
}

void AccountScreen::closePanel() {
    const bool hadKeyboard = Picture1->isAncestorOf(focusWidget());
    opened_.reset();
    Picture1->setVisible(false);
    if (hadKeyboard) {
        MSFlexGrid1->setFocus();
    }
}

qint32 AccountScreen::openedRegistration() const {
    return opened_ ? opened_->registration : MSFlexGrid1->RowData(MSFlexGrid1->Row());
}

bool AccountScreen::decide(const QString& sql, const std::function<void()>& reloadList) {
    // The header row shows no registration, so no colleague can have taken it.
    const bool shown = opened_.has_value() || MSFlexGrid1->Row() > 0;
    // The line after the handled one takes its place and becomes the current one.
    const int place = opened_ ? opened_->line : MSFlexGrid1->Row();
    const auto reloadInPlace = [&] {
        reloadList();
        showCurrentLine(place);
    };
    bool changed = false;
    try {
        changed = Connection::cn().Execute(sql, database::adEveryStatementChanges) > 0;
    } catch (const database::ConnectionLost&) {
        // The decision's fate is unknown: the list shows what the server holds.
        reloadInPlace();
        throw;
    }
    reloadInPlace();
    if (!changed && shown) {
        widgets::MsgBox(QStringLiteral("该Qivo账号已由他人处理，列表已刷新"),
                        widgets::vbInformation);
    }
    return changed;
}

}  // namespace qivo
