#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QStyle>

#include "session/login_form.h"
#include "widgets/error_path.h"
#include "widgets/text_box.h"

namespace qivo {

frmLogin::frmLogin(QWidget* parent) : widgets::Form(parent) {
    setWindowTitle(QStringLiteral("Qivo账号审核 - 用户登录"));
    buildControls();
    connectEvents();
}

void frmLogin::buildControls() {
    TxtUser = new widgets::TextBox(this);
    txtPassword = new widgets::TextBox(this);
    txtPassword->setPasswordChar(true);
    cmdOK = new QPushButton(style()->standardIcon(QStyle::SP_DialogOkButton),
                            QStringLiteral("登录"), this);
    cmdOK->setToolTip(QStringLiteral("登录"));
    cmdCancel = new QPushButton(style()->standardIcon(QStyle::SP_DialogCancelButton),
                                QStringLiteral("退出"), this);
    cmdCancel->setToolTip(QStringLiteral("退出"));
    // Enter moves from the password to 登录, and Enter there signs in.
    cmdOK->setAutoDefault(true);
    cmdCancel->setAutoDefault(true);
    Label2 = new QLabel(QStringLiteral("请您选择要登录的岗位"), this);
    List1 = new QListWidget(this);
    Label1 = new QLabel(this);
    Label1->setAlignment(Qt::AlignRight);
    Label2->setVisible(false);
    List1->setVisible(false);

    auto* title = new QLabel(QStringLiteral("Qivo账号审核"), this);
    QFont titleFont = title->font();
    titleFont.setPointSizeF(titleFont.pointSizeF() * 1.6);
    titleFont.setBold(true);
    title->setFont(titleFont);

    auto* layout = new QGridLayout(this);
    layout->addWidget(title, 0, 0, 1, 3);
    layout->addWidget(new QLabel(QStringLiteral("工号"), this), 1, 0);
    layout->addWidget(TxtUser, 1, 1, 1, 2);
    layout->addWidget(new QLabel(QStringLiteral("密码"), this), 2, 0);
    layout->addWidget(txtPassword, 2, 1, 1, 2);
    layout->addWidget(cmdOK, 3, 1);
    layout->addWidget(cmdCancel, 3, 2);
    layout->addWidget(Label2, 4, 0, 1, 3);
    layout->addWidget(List1, 5, 0, 1, 3);
    layout->addWidget(Label1, 6, 0, 1, 3);
    layout->setSizeConstraint(QLayout::SetFixedSize);
    setTabOrder(TxtUser->editor(), txtPassword->editor());
    setTabOrder(txtPassword->editor(), cmdOK);
}

void frmLogin::connectEvents() {
    using widgets::onEvent;
    onEvent(TxtUser, &widgets::TextBox::gotFocus, this, [this] { TxtUser_GotFocus(); });
    onEvent(txtPassword, &widgets::TextBox::gotFocus, this, [this] { txtPassword_GotFocus(); });
    onEvent(TxtUser, &widgets::TextBox::returnPressed, this, [this] { TxtUser_KeyPress(13); });
    onEvent(txtPassword, &widgets::TextBox::returnPressed, this,
            [this] { txtPassword_KeyPress(13); });
    onEvent(cmdOK, &QPushButton::clicked, this, [this] { cmdOK_Click(); });
    onEvent(cmdCancel, &QPushButton::clicked, this, [this] { cmdCancel_Click(); });
    onEvent(List1, &QListWidget::itemDoubleClicked, this, [this] { List1_DblClick(); });
    List1->installEventFilter(this);
}

}  // namespace qivo
