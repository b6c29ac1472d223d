#pragma once

#include "accounts/account_screen.h"

namespace qivo {

// The main screen of a session: the owner registrations waiting for review, each opened beside
// the owner's record and then approved or rejected.
class frmQivo账号审核 final : public AccountScreen {
  public:
    explicit frmQivo账号审核(QWidget* parent = nullptr);

    QPushButton* Command1 = nullptr;
    QPushButton* Command2 = nullptr;
    QPushButton* Command3 = nullptr;
    QPushButton* Command6 = nullptr;

    void Form_Load() override;
    void Form_Unload() override;
    void MSFlexGrid1_Click();
    void MSFlexGrid1_DblClick() override;
    void Command1_Click();
    void Command2_Click();
    void Command3_Click();
    void Command4_Click();
    void Command5_Click();
    void Command6_Click();

    void LoadPendingList();
    void ShowAccountRow(qint32 row);
    void ShowOwner(qint32 ownerId);

  private:
    void buildButtons();
    void connectEvents();
    void markMismatches();
    void decideOpenedRow(const QString& question, const QString& done,
                         const std::function<QString(qint32)>& statement);

    bool ownerShown_ = false;
};

// The program's one review screen.
frmQivo账号审核& reviewForm();

}  // namespace qivo
