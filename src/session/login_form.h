#pragma once

#include <QString>
#include <vector>

#include "widgets/form.h"

class QLabel;
class QListWidget;
class QPushButton;

namespace qivo {

namespace database {
class Recordset;
}
namespace widgets {
class TextBox;
}

// One post the signed-in user may choose: the ten session values in their order.
struct PostChoice {
    QString userId;
    QString userName;
    QString deptId;
    QString deptName;
    QString postId;
    QString postName;
    QString deptCategoryId;
    QString deptCategoryName;
    QString postCategoryId;
    QString postCategoryName;
};

// The sign-in form: takes a session from the command line, or signs a member of staff in and
// lets them choose one of their posts, then hands over to the review screen.
class frmLogin final : public widgets::Form {
  public:
    explicit frmLogin(QWidget* parent = nullptr);

    widgets::TextBox* TxtUser;
    widgets::TextBox* txtPassword;
    QPushButton* cmdOK;
    QPushButton* cmdCancel;
    QListWidget* List1;
    QLabel* Label1;
    QLabel* Label2;

    std::vector<PostChoice> PostChoices;

    void Form_Load() override;
    void TxtUser_GotFocus();
    void txtPassword_GotFocus();
    void TxtUser_KeyPress(int keyAscii);
    void txtPassword_KeyPress(int keyAscii);
    void cmdOK_Click();
    void cmdCancel_Click();
    void List1_DblClick();

  protected:
    // Enter on a post chooses it, as a double-click does.
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void buildControls();
    void connectEvents();
    void signIn();
    void listPosts(database::Recordset& posts);
    void handOver();
};

}  // namespace qivo
