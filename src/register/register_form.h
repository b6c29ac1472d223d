#pragma once

#include "accounts/account_screen.h"

namespace qivo {

// The register of approved owner accounts: one row per household, opened into the owner's
// record and the household's member accounts, where the owner's account is terminated together
// with them.
class frmQivo账号一览表 final : public AccountScreen {
  public:
    explicit frmQivo账号一览表(QWidget* parent = nullptr);

    widgets::FlexGrid* MSFlexGrid2 = nullptr;
    QPushButton* Command1 = nullptr;
    QPushButton* Command2 = nullptr;

    void Form_Load() override;
    void MSFlexGrid1_Click();
    void MSFlexGrid1_DblClick() override;
    void Command1_Click();
    void Command2_Click();
    void Command4_Click();
    void Command5_Click();

    void LoadApprovedList();
    void LoadOwnerDetail(qint32 zhId);
    void LoadMemberAccounts(const QString& zhId);
    void FillAccountFields(qint32 row);

  private:
    void buildMemberArea();
    void fillMemberAccounts(const QString& zhId);
    void connectEvents();
};

// The program's one register screen.
frmQivo账号一览表& registerForm();

}  // namespace qivo
