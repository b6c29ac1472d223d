#pragma once

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <array>
#include <map>

#include "widgets/flex_grid.h"
#include "widgets/form.h"
#include "widgets/frame.h"
#include "widgets/text_box.h"

namespace qivo {

class OwnerKeyReceiver;

namespace database {
class Recordset;
}

// The owner information screen: one owner of 业主表 in Frame1(0), the household members of ZHZL
// in Frame1(1). The opener puts the owner key into Frame1(0).Tag (empty for a new owner, whose
// room then goes into Frame1(1).Tag) before showing it.
class frm业户信息 final : public widgets::Form {
  public:
    explicit frm业户信息(QWidget* parent = nullptr);

    // The opener, told the owner key on unload; none by default.
    void setOpener(OwnerKeyReceiver* opener) { opener_ = opener; }

    std::array<widgets::Frame*, 2> Frame1{};
    std::array<widgets::TextBox*, 11> Text2{};
    QCheckBox* Check1 = nullptr;
    QPushButton* Command3 = nullptr;
    QPushButton* Command2 = nullptr;
    widgets::FlexGrid* Grid2 = nullptr;
    std::array<widgets::TextBox*, 13> Text3{};
    QComboBox* Combo4 = nullptr;
    QComboBox* Combo5 = nullptr;
    QPushButton* Command6 = nullptr;
    QPushButton* Command5 = nullptr;
    QPushButton* Command7 = nullptr;
    std::map<int, QLabel*> Label1;

    void Form_Load() override;
    void Form_Activate() override;
    bool Form_QueryUnload() override;
    void Form_Unload() override;
    void Grid2_Click();
    void Grid2_RowColChange();
    void Grid2_KeyPress(int keyAscii);
    void Command6_Click();
    void Command7_Click();
    void Command2_Click();
    void Command3_Click();
    void Command5_Click();

  private:
    // Whose values the member panel holds: a save writes exactly that member.
    enum class PanelMember { Nobody, New, Stored };

    void buildOwnerFrame();
    void buildMemberFrame();
    void setTabOrder();
    void connectEvents();
    QLabel* addLabel(int index, const QString& text, QWidget* parent);

    void clearAllBoxes();
    void showOwner(const QString& ownerKey);
    void showMembers(const QString& ownerKey);
    void setMemberButtons();
    bool ownerStorable();
    void writeOwnerBoxes(database::Recordset& owner, bool everyBox) const;
    void saveOwner();
    bool memberStorable();
    void insertMember();
    void updatePanelMember();
    void writeMemberFields(database::Recordset& member, bool everyField) const;
    void showMemberLine(int row, const database::Recordset& member);
    QVariant memberValue(int gridCol) const;
    widgets::TextBox* memberBox(int gridCol) const;
    QWidget* memberControl(int gridCol) const;

    QStringList ownerValues() const;
    QStringList memberValues() const;
    bool ownerEdited() const { return ownerValues() != ownerShown_; }
    bool memberEdited() const;
    void holdInPanel(PanelMember member, const QString& key = {});
    bool mayDiscardMemberEdits();
    int memberLine(const QString& key) const;
    void reloadAfterUnknownOutcome();

    PanelMember panelMember_ = PanelMember::Nobody;
    QString panelKey_;         // the ZL_ID of a stored member in the panel
    QStringList memberShown_;  // the panel's values when it was filled or saved
    QStringList ownerShown_;   // the owner's boxes and Check1 when read or saved

    OwnerKeyReceiver* opener_ = nullptr;
};

}  // namespace qivo
