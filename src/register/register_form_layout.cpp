#include "register/register_form.h"
#include "widgets/button_keys.h"
#include "widgets/error_path.h"
#include "widgets/screen_font.h"
#include "widgets/single_form.h"

namespace qivo {

namespace {

AccountScreenDesign registerDesign() {
    const QString listFormat = accountListColumns() + formatColumn('^', QStringLiteral("状态"), 8) +
                               '|' + formatColumn('^', QStringLiteral("操作"), 12) + '|';
    return {.gridMargin = 180,
            .refreshGap = 900,
            .exitMargin = 300,
            .title = QStringLiteral("已审核Qivo账号"),
            .listFormat = listFormat,
            .countText = QStringLiteral("已审核 %1 户"),
            .panel = {0, 0, 12000, 8760},
            .accountFields = {300, 1050},
            .ownerFields = {5900, 1050}};
}

QString memberFormat() {
    return formatColumn('<', QStringLiteral("序"), 4) + '|' +
           formatColumn('<', QStringLiteral("Qivo号"), 32) + '|' +
           formatColumn('<', QStringLiteral("姓名"), 8) + '|' +
           formatColumn('<', QStringLiteral("身份证号"), 39) + '|' +
           formatColumn('<', QStringLiteral("手机号"), 23);
}

}  // namespace

frmQivo账号一览表::frmQivo账号一览表(QWidget* parent) : AccountScreen(registerDesign(), parent) {
    setWindowTitle(QStringLiteral("Qivo账号一览表"));
    setFont(widgets::screenFont(font()));
    widgets::setTwipsGeometry(this, {0, 0, 15030, 10500});
    Command4 = new QPushButton(QStringLiteral("刷新"), this);
    widgets::setTwipsGeometry(Command4, {9570, 60, 1365, 375});
    Command5 = new QPushButton(QStringLiteral("退出"), this);
    widgets::setTwipsGeometry(Command5, {13350, 45, 1365, 375});
    buildMemberArea();
    connectEvents();
    openWideEnoughForList();
    setSmallestSize({Label1[0]});
}

void frmQivo账号一览表::buildMemberArea() {
    addHeading(QStringLiteral("业主及Qivo信息"), {300, 120, 4000, 400}, panelPage());
    addHeading(QStringLiteral("业主Qivo注册资料"), {300, 600, 4000, 360}, panelPage());
    addHeading(QStringLiteral("业主资料"), {5900, 600, 4000, 360}, panelPage());
    addHeading(QStringLiteral("业主名下的Qivo账号"), {300, 6100, 4000, 360}, panelPage());
    MSFlexGrid2 = new widgets::FlexGrid(panelPage());
    MSFlexGrid2->setFormatString(memberFormat());
    widgets::setTwipsGeometry(MSFlexGrid2, {300, 6480, 11400, 1455});
    // On a narrowed panel the widest columns give way, so that the list never scrolls sideways.
    MSFlexGrid2->setGivingWay({{1, 3}});
    Command1 = new QPushButton(QStringLiteral("终止"), panelPage());
    widgets::setTwipsGeometry(Command1, {3150, 8055, 1470, 450});
    Command2 = new QPushButton(QStringLiteral("关闭"), panelPage());
    widgets::setTwipsGeometry(Command2, {7680, 8055, 1470, 450});
    setPanelButtons({Command1, Command2});

    // Termination deletes the accounts, hence the delete key.
    widgets::giveKeys(Command1, {Qt::CTRL | Qt::Key_Delete});
    widgets::giveKeys(Command2, {Qt::Key_Escape});
    widgets::giveKeys(Command4, {Qt::Key_F5});
    widgets::giveKeys(Command5, {Qt::CTRL | Qt::Key_W});
}

void frmQivo账号一览表::connectEvents() {
    using widgets::onEvent;
    onEvent(MSFlexGrid1, &widgets::FlexGrid::Click, this, [this] { MSFlexGrid1_Click(); });
    onEvent(MSFlexGrid1, &widgets::FlexGrid::DblClick, this, [this] { MSFlexGrid1_DblClick(); });
    onEvent(Command1, &QPushButton::clicked, this, [this] { Command1_Click(); });
    onEvent(Command2, &QPushButton::clicked, this, [this] { Command2_Click(); });
    onEvent(Command4, &QPushButton::clicked, this, [this] { Command4_Click(); });
    onEvent(Command5, &QPushButton::clicked, this, [this] { Command5_Click(); });
}

frmQivo账号一览表& registerForm() {
    return widgets::singleForm<frmQivo账号一览表>();
}

}  // namespace qivo
