#include <QGridLayout>
#include <QHeaderView>
#include <QScrollArea>
#include <QVBoxLayout>

#include "owner/owner_fields.h"
#include "owner/owner_form.h"
#include "owner/owner_input.h"
#include "widgets/button_keys.h"
#include "widgets/error_path.h"
#include "widgets/screen_font.h"

namespace qivo {

namespace {

// Where a label and its control go in a frame's grid of label/control pairs.
struct Cell {
    int label;
    QString text;
    QWidget* control;
    int row;
    int pair;  // 0, 1, 2 … from the left
    int pairSpan = 1;
};

// The narrowest a box may get when the window shrinks: a date still shows whole.
int smallestBoxWidth(const QWidget* frame) {
    return frame->fontMetrics().horizontalAdvance(QStringLiteral("0000-00-00")) + 16;
}

QPushButton* button(const QString& caption, QWidget* parent) {
    auto* result = new QPushButton(caption, parent);
    result->setMinimumWidth(96);
    return result;
}

}  // namespace

frm业户信息::frm业户信息(QWidget* parent) : widgets::Form(parent) {
    setWindowTitle(QStringLiteral("业户信息"));
    setFont(widgets::screenFont(font()));
    resize(980, 700);
    buildOwnerFrame();
    buildMemberFrame();
    auto* page = new QWidget;
    auto* pageLayout = new QVBoxLayout(page);
    pageLayout->setContentsMargins({});
    pageLayout->addWidget(Frame1[0]);
    pageLayout->addWidget(Frame1[1], 1);
    // The frames scroll only where the screen holds less than they need.
    auto* scroll = new QScrollArea(this);
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setWidgetResizable(true);
    scroll->setWidget(page);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(scroll);
    setMinimumSize(page->minimumSizeHint().grownBy(layout->contentsMargins()));
    setTabOrder();
    connectEvents();
    ownerShown_ = ownerValues();
    memberShown_ = memberValues();
}

// Tab goes through the controls in the order they stand on the screen, the check box and the
// drop-downs among the boxes. Set once the frames are in their page: moving a widget into
// another parent reorders its chain.
void frm业户信息::setTabOrder() {
    // A text box passes the focus on to its editor, which is what takes a place in the chain.
    std::vector<QWidget*> order;
    for (std::size_t i = 0; i < 10; ++i) {
        order.push_back(Text2[i]->editor());
    }
    order.insert(order.end(), {Check1, Text2[10]->editor(), Command3, Command2, Grid2});
    for (int col = 1; col <= static_cast<int>(owner_fields::kMemberGridColumns.size()); ++col) {
        const widgets::TextBox* box = memberBox(col);
        order.push_back(box ? box->editor() : memberControl(col));
    }
    order.insert(order.end(), {Command6, Command5, Command7});
    for (std::size_t i = 1; i < order.size(); ++i) {
        QWidget::setTabOrder(order[i - 1], order[i]);
    }
}

QLabel* frm业户信息::addLabel(int index, const QString& text, QWidget* parent) {
    auto* label = new QLabel(text, parent);
    label->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    Label1[index] = label;
    return label;
}

void frm业户信息::buildOwnerFrame() {
    Frame1[0] = new widgets::Frame(QStringLiteral("业户信息"), this);
    QWidget* frame = Frame1[0];
    for (int i = 0; i < static_cast<int>(Text2.size()); ++i) {
        Text2[i] = new widgets::TextBox(frame, i == 10);
    }
    Text2[10]->setFixedHeight(64);
    Check1 = new QCheckBox(QStringLiteral("允许短信通知"), frame);
    Command3 = button(QStringLiteral("确定(&T)"), frame);
    Command2 = button(QStringLiteral("关闭"), frame);

    const Cell cells[] = {
        {18, QStringLiteral("业主姓名"), Text2[0], 0, 0},
        {0, QStringLiteral("固定电话"), Text2[1], 0, 1},
        {6, QStringLiteral("移动电话"), Text2[2], 0, 2},
        {3, QStringLiteral("身 份 证"), Text2[3], 1, 0},
        {2, QStringLiteral("购房日期"), Text2[4], 1, 1},
        {16, QStringLiteral("收房日期"), Text2[5], 1, 2},
        {17, QStringLiteral("进户日期"), Text2[6], 2, 0},
        {8, QStringLiteral("开始收费日期"), Text2[7], 2, 1},
        {1, QStringLiteral("职业信息"), Text2[8], 2, 2},
        {7, QStringLiteral("户籍（国籍）"), Text2[9], 3, 0, 2},
        {5, QStringLiteral("备    注"), Text2[10], 4, 0, 3},
    };
    auto* grid = new QGridLayout(frame);
    for (const Cell& cell : cells) {
        grid->addWidget(addLabel(cell.label, cell.text, frame), cell.row, cell.pair * 2);
        grid->addWidget(cell.control, cell.row, cell.pair * 2 + 1, 1, cell.pairSpan * 2 - 1);
        cell.control->setMinimumWidth(smallestBoxWidth(frame));
    }
    for (std::size_t i = 0; i < Text2.size(); ++i) {
        owner_input::limitToColumn(Text2[i], QStringLiteral("业主表"),
                                   owner_fields::kOwnerBoxColumns[i].toString());
    }
    for (const std::size_t i : owner_fields::kOwnerDateBoxes) {
        Text2[i]->setToolTip(owner_input::dateFormsTip());
    }
    grid->addWidget(Check1, 3, 5);
    widgets::giveKeys(Command2, {Qt::Key_Escape});
    auto* buttons = new QVBoxLayout;
    buttons->addWidget(Command3);
    buttons->addWidget(Command2);
    buttons->addStretch();
    grid->addLayout(buttons, 0, 6, 5, 1);
    for (int col = 1; col < 6; col += 2) {
        grid->setColumnStretch(col, 1);
    }
}

void frm业户信息::buildMemberFrame() {
    Frame1[1] = new widgets::Frame(QStringLiteral("业户(成员)信息"), this);
    Frame1[1]->setEnabled(false);
    QWidget* frame = Frame1[1];
    Grid2 = new widgets::FlexGrid(frame);
    Grid2->setFormatString(owner_fields::kMemberGridFormat.toString());
    Grid2->setFixedCols(1);
    // However small the window, the header and a few members stay in view.
    Grid2->setMinimumHeight(Grid2->horizontalHeader()->sizeHint().height() +
                            4 * Grid2->verticalHeader()->defaultSectionSize());
    for (int i = 0; i < static_cast<int>(Text3.size()); ++i) {
        Text3[i] = new widgets::TextBox(frame, i == 12);
    }
    Text3[12]->setFixedHeight(56);
    Combo4 = new QComboBox(frame);
    Combo4->addItems({QStringLiteral("男"), QStringLiteral("女")});
    Combo5 = new QComboBox(frame);
    Combo5->addItems({QStringLiteral("已婚"), QStringLiteral("未婚")});
    // Nothing chosen until a member is picked or the user chooses.
    Combo4->setCurrentIndex(-1);
    Combo5->setCurrentIndex(-1);
    Command6 = button(QStringLiteral("新增(&A)"), frame);
    Command5 = button(QStringLiteral("确定(&Q)"), frame);
    Command7 = button(QStringLiteral("删除(&D)"), frame);
    // Deleting needs a member line, which only a selection gives.
    Command7->setEnabled(false);

    const Cell cells[] = {
        {35, QStringLiteral("姓名"), Text3[0], 0, 0},
        {34, QStringLiteral("关系"), Text3[1], 0, 1},
        {33, QStringLiteral("性别"), Combo4, 0, 2},
        {32, QStringLiteral("出生日期"), Text3[2], 0, 3},
        {31, QStringLiteral("出 生 地"), Text3[3], 1, 0},
        {30, QStringLiteral("籍贯（国籍）"), Text3[4], 1, 1},
        {21, QStringLiteral("文化程度"), Text3[5], 1, 2},
        {20, QStringLiteral("婚姻状况"), Combo5, 1, 3},
        {45, QStringLiteral("身份证"), Text3[6], 2, 0},
        {42, QStringLiteral("固定电话"), Text3[7], 2, 1},
        {4, QStringLiteral("移动电话"), Text3[8], 2, 2},
        {43, QStringLiteral("服务处所"), Text3[9], 2, 3},
        {41, QStringLiteral("宗教"), Text3[10], 3, 0},
        {40, QStringLiteral("民族"), Text3[11], 3, 1},
        {39, QStringLiteral("备注"), Text3[12], 4, 0, 4},
    };
    auto* panel = new QGridLayout;
    for (const Cell& cell : cells) {
        panel->addWidget(addLabel(cell.label, cell.text, frame), cell.row, cell.pair * 2);
        panel->addWidget(cell.control, cell.row, cell.pair * 2 + 1, 1, cell.pairSpan * 2 - 1);
        cell.control->setMinimumWidth(smallestBoxWidth(frame));
    }
    for (int col = 1; col <= static_cast<int>(owner_fields::kMemberGridColumns.size()); ++col) {
        if (widgets::TextBox* box = memberBox(col)) {
            owner_input::limitToColumn(box, QStringLiteral("ZHZL"),
                                       owner_fields::kMemberGridColumns[col - 1].toString());
        }
    }
    memberBox(owner_fields::kBirthDateColumn)->setToolTip(owner_input::dateFormsTip());
    auto* buttons = new QVBoxLayout;
    buttons->addWidget(Command6);
    buttons->addWidget(Command5);
    buttons->addWidget(Command7);
    buttons->addStretch();
    panel->addLayout(buttons, 0, 8, 5, 1);
    for (int col = 1; col < 8; col += 2) {
        panel->setColumnStretch(col, 1);
    }
    auto* layout = new QVBoxLayout(frame);
    layout->addWidget(Grid2, 1);
    layout->addLayout(panel);
}

void frm业户信息::connectEvents() {
    widgets::onEvent(Grid2, &widgets::FlexGrid::Click, this, [this] { Grid2_Click(); });
    widgets::onEvent(Grid2, &widgets::FlexGrid::RowColChange, this,
                     [this] { Grid2_RowColChange(); });
    connect(Grid2, &widgets::FlexGrid::KeyPress, this,
            [this](int keyAscii) { widgets::guarded([&] { Grid2_KeyPress(keyAscii); }); });
    widgets::onEvent(Command2, &QPushButton::clicked, this, [this] { Command2_Click(); });
    widgets::onEvent(Command3, &QPushButton::clicked, this, [this] { Command3_Click(); });
    widgets::onEvent(Command5, &QPushButton::clicked, this, [this] { Command5_Click(); });
    widgets::onEvent(Command6, &QPushButton::clicked, this, [this] { Command6_Click(); });
    widgets::onEvent(Command7, &QPushButton::clicked, this, [this] { Command7_Click(); });
}

}  // namespace qivo
