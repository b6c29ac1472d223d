#include <QStyle>

#include "review/review_form.h"
#include "widgets/button_keys.h"
#include "widgets/error_path.h"
#include "widgets/screen_font.h"
#include "widgets/single_form.h"

namespace qivo {

namespace {

AccountScreenDesign reviewDesign() {
    const QString listFormat =
        accountListColumns() + formatColumn('^', QStringLiteral("操作"), 1) + '|';
    return {.gridMargin = 200,
            .refreshGap = 800,
            .exitMargin = 400,
            .title = QStringLiteral("待审核Qivo账号"),
            .listFormat = listFormat,
            .countText = QStringLiteral("待审核 %1 条"),
            .panel = {0, 0, 11400, 6600},
            .accountFields = {300, 1050},
            .ownerFields = {5700, 1050}};
}

QPushButton* pictureButton(QStyle::StandardPixmap picture, const QString& tip, QWidget* parent) {
    auto* button = new QPushButton(parent);
    button->setIcon(parent->style()->standardIcon(picture));
    button->setToolTip(tip);
    return button;
}

}  // namespace

frmQivo账号审核::frmQivo账号审核(QWidget* parent) : AccountScreen(reviewDesign(), parent) {
    setWindowTitle(QStringLiteral("Qivo账号审核"));
    setFont(widgets::screenFont(font()));
    widgets::setTwipsGeometry(this, {0, 0, 15030, 9000});
    buildButtons();
    connectEvents();
    openWideEnoughForList();
    setSmallestSize({Label1[0], Command6});
}

void frmQivo账号审核::buildButtons() {
    Command6 = new QPushButton(QStringLiteral("已审核Qivo账号"), this);
    widgets::setTwipsGeometry(Command6, {2700, 45, 1800, 375});
    Command4 = pictureButton(QStyle::SP_BrowserReload, QStringLiteral("刷新"), this);
    widgets::setTwipsGeometry(Command4, {12600, 45, 555, 375});
    Command5 = pictureButton(QStyle::SP_DialogCloseButton, QStringLiteral("退出"), this);
    widgets::setTwipsGeometry(Command5, {14100, 45, 555, 375});

    addHeading(QStringLiteral("Qivo注册资料"), {300, 600, 4000, 360}, panelPage());
    addHeading(QStringLiteral("业主资料"), {5700, 600, 4000, 360}, panelPage());
    Command3 = new QPushButton(QStringLiteral("审核同意"), panelPage());
    widgets::setTwipsGeometry(Command3, {1400, 4200, 1470, 450});
    Command1 = new QPushButton(QStringLiteral("审核不同意"), panelPage());
    widgets::setTwipsGeometry(Command1, {3100, 4200, 1470, 450});
    Command2 = pictureButton(QStyle::SP_DialogCancelButton, QStringLiteral("关闭"), panelPage());
    widgets::setTwipsGeometry(Command2, {4800, 4200, 555, 450});
    setPanelButtons({Command3, Command1, Command2});

    // Approval and rejection by keyboard; rejection deletes the registration.
    widgets::giveKeys(Command3, {Qt::CTRL | Qt::Key_Enter, Qt::CTRL | Qt::Key_Return});
    widgets::giveKeys(Command1, {Qt::CTRL | Qt::Key_Delete});
    widgets::giveKeys(Command2, {Qt::Key_Escape});
    widgets::giveKeys(Command4, {Qt::Key_F5});
    widgets::giveKeys(Command5, {Qt::CTRL | Qt::Key_W});
    // The caption is the screen's own text, so the key is not marked in it.
    widgets::giveKeys(Command6, {Qt::ALT | Qt::Key_Q});
}

void frmQivo账号审核::connectEvents() {
    using widgets::onEvent;
    onEvent(MSFlexGrid1, &widgets::FlexGrid::Click, this, [this] { MSFlexGrid1_Click(); });
    onEvent(MSFlexGrid1, &widgets::FlexGrid::DblClick, this, [this] { MSFlexGrid1_DblClick(); });
    onEvent(Command1, &QPushButton::clicked, this, [this] { Command1_Click(); });
    onEvent(Command2, &QPushButton::clicked, this, [this] { Command2_Click(); });
    onEvent(Command3, &QPushButton::clicked, this, [this] { Command3_Click(); });
    onEvent(Command4, &QPushButton::clicked, this, [this] { Command4_Click(); });
    onEvent(Command5, &QPushButton::clicked, this, [this] { Command5_Click(); });
    onEvent(Command6, &QPushButton::clicked, this, [this] { Command6_Click(); });
}

frmQivo账号审核& reviewForm() {
    return widgets::singleForm<frmQivo账号审核>();
}

}  // namespace qivo
