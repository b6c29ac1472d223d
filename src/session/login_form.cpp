#include "session/login_form.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QListWidget>
#include <array>

#include "database/ado.h"
#include "runtime/blanks.h"
#include "runtime/end.h"
#include "runtime/runtime_error.h"
#include "session/command_line.h"
#include "session/connection.h"
#include "session/login_sql.h"
#include "session/main_screen.h"
#include "session/session_values.h"
#include "widgets/error_path.h"
#include "widgets/msgbox.h"
#include "widgets/text_box.h"

namespace qivo {
namespace {

constexpr int kEnter = 13;

// The session values in the order of a post choice and of the command line.
std::array<QString*, 10> sessionValues() {
    return {&CurrentUserId,          &CurrentUserName,         &CurrentDeptId,
            &CurrentDeptName,        &CurrentPostId,           &CurrentPostName,
            &CurrentDeptCategoryId,  &CurrentDeptCategoryName, &CurrentPostCategoryId,
            &CurrentPostCategoryName};
}

// Enter moves on to the next control, as Tab does.
void sendTab(QWidget* from) {
    QKeyEvent tab(QEvent::KeyPress, Qt::Key_Tab, Qt::NoModifier);
    QCoreApplication::sendEvent(from, &tab);
}

}  // namespace

void frmLogin::Form_Load() {
    CommandLineText = Command();
    if (!CommandLineText.isEmpty()) {
        const QStringList fields = commandLineFields(CommandLineText);
        const auto values = sessionValues();
        for (std::size_t i = 0; i < values.size(); ++i) {
            *values[i] = fields[static_cast<qsizetype>(i)];
        }
        if (ConnectDatabase()) {
            showMainScreen();
            Unload();
            return;
        }
    }
    Label1->setText(QStringLiteral("V%1.%2版").arg(QIVO_VERSION_MAJOR).arg(QIVO_VERSION_MINOR));
}

void frmLogin::TxtUser_GotFocus() {
    TxtUser->selectAll();
    Label2->setVisible(false);
    List1->setVisible(false);
}

void frmLogin::txtPassword_GotFocus() {
    txtPassword->selectAll();
}

void frmLogin::TxtUser_KeyPress(int keyAscii) {
    if (keyAscii == kEnter) {
        sendTab(TxtUser->editor());
    }
}

void frmLogin::txtPassword_KeyPress(int keyAscii) {
    if (keyAscii == kEnter) {
        sendTab(txtPassword->editor());
    }
}

void frmLogin::cmdOK_Click() {
    try {
        signIn();
    } catch (const runtime::RuntimeError& error) {
        widgets::MsgBox(QString::number(error.number()) + " " + error.description(),
                        widgets::vbInformation);
    }
}

void frmLogin::signIn() {
    const QString user = TxtUser->text();
    const QString password = txtPassword->text();
    if (user.isEmpty()) {
        widgets::MsgBox(QStringLiteral("用户名不能为空!"), widgets::vbInformation);
        return;
    }
    if (password.isEmpty()) {
        widgets::MsgBox(QStringLiteral("密码不能为空!"), widgets::vbInformation);
        return;
    }
    // The user's name stays as it was: a super-user session approves under the earlier name.
    for (QString* value : sessionValues()) {
        if (value != &CurrentUserName) {
            value->clear();
        }
    }
    if (!ConnectDatabase()) {
        runtime::End();
        return;
    }
    if (user == QLatin1String("qd") && password == QLatin1String("qorvelantism7315")) {
        CurrentUserId = QStringLiteral("超级用户");
        if (!Tag.isEmpty()) {
            Unload();
        } else {
            showMainScreen();
        }
        return;
    }
    database::Recordset staff;
    staff.Open(StaffQuery(user, runtime::trimBlanks(password)), Connection::cn());
    if (staff.Eof()) {
        widgets::MsgBox(QStringLiteral("用户名或密码不正确,请重新输入!"), widgets::vbInformation);
        return;
    }
    database::Recordset posts;
    posts.Open(PostQuery(user), Connection::cn());
    if (posts.Eof()) {
        widgets::MsgBox(QStringLiteral("对不起，您没有岗位，请选择系统管理员"), widgets::vbOKOnly);
        return;
    }
    listPosts(posts);
    if (List1->count() == 1) {
        List1->setCurrentRow(0);
        List1_DblClick();
        return;
    }
    Label2->setVisible(true);
    List1->setVisible(true);
    // Arrow keys and Enter pick a post without the mouse.
    List1->setFocus();
}

void frmLogin::listPosts(database::Recordset& posts) {
    using database::fieldText;
    const QString user = TxtUser->text();
    List1->clear();
    PostChoices.clear();
    for (; !posts.Eof(); posts.MoveNext()) {
        const bool main = posts.Fields("主要岗位").toBool();
        List1->addItem(fieldText(posts.Fields("职能部门名称")) + " " +
                       fieldText(posts.Fields("岗位名称")) + "(" +
                       (main ? QStringLiteral("主要") : QStringLiteral("兼职")) + ")");
        PostChoices.push_back(
            {user, fieldText(posts.Fields("姓名")), fieldText(posts.Fields("职能部门编号")),
             fieldText(posts.Fields("职能部门名称")), fieldText(posts.Fields("岗位代号")),
             fieldText(posts.Fields("岗位名称")), fieldText(posts.Fields("部门类别代号")),
             fieldText(posts.Fields("部门类别名称")), fieldText(posts.Fields("岗位类别编号")),
             fieldText(posts.Fields("岗位类别名称"))});
    }
}

void frmLogin::List1_DblClick() {
    const int index = List1->currentRow();
    if (index < 0 || index >= static_cast<int>(PostChoices.size())) {
        throw runtime::RuntimeError(runtime::err::SubscriptOutOfRange,
                                    QStringLiteral("下标越界：没有选中的岗位。"));
    }
    const PostChoice& choice = PostChoices[static_cast<std::size_t>(index)];
    const std::array<const QString*, 10> fields = {
        &choice.userId,          &choice.userName,         &choice.deptId,
        &choice.deptName,        &choice.postId,           &choice.postName,
        &choice.deptCategoryId,  &choice.deptCategoryName, &choice.postCategoryId,
        &choice.postCategoryName};
    const auto values = sessionValues();
    for (std::size_t i = 0; i < values.size(); ++i) {
        *values[i] = runtime::trimBlanks(*fields[i]);
    }
    handOver();
}

void frmLogin::handOver() {
    if (Tag.isEmpty()) {
        showMainScreen();
    }
    Unload();
}

bool frmLogin::eventFilter(QObject* watched, QEvent* event) {
    if (watched == List1 && event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_Return || key == Qt::Key_Enter) {
            widgets::guarded([this] { List1_DblClick(); });
            return true;
        }
    }
    return widgets::Form::eventFilter(watched, event);
}

void frmLogin::cmdCancel_Click() {
    runtime::End();
}

}  // namespace qivo
