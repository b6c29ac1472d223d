#include "owner/owner_form.h"

#include "database/ado.h"
#include "database/dates.h"
#include "owner/box_value.h"
#include "owner/owner_fields.h"
#include "owner/owner_input.h"
#include "owner/owner_key_receiver.h"
#include "owner/owner_sql.h"
#include "runtime/blanks.h"
#include "session/connection.h"
#include "widgets/msgbox.h"

namespace qivo {

namespace {

const QString kOwnerTable = QStringLiteral("业主表");

}  // namespace

void frm业户信息::Form_Load() {
    Text2[0]->setFocus();
}

void frm业户信息::Form_Activate() {
    const QString ownerKey = Frame1[0]->Tag;
    if (ownerKey.isEmpty()) {
        Frame1[1]->setEnabled(true);
        clearAllBoxes();
        ownerShown_ = ownerValues();
        holdInPanel(PanelMember::Nobody);
        return;
    }
    showOwner(ownerKey);
    showMembers(ownerKey);
    setMemberButtons();
    Frame1[1]->setEnabled(true);
}

void frm业户信息::clearAllBoxes() {
    for (widgets::TextBox* box : Text2) {
        box->setText({});
    }
    for (widgets::TextBox* box : Text3) {
        box->setText({});
    }
}

// The boxes are emptied first, so a read that fails never leaves another owner's record in them.
void frm业户信息::showOwner(const QString& ownerKey) {
    for (widgets::TextBox* box : Text2) {
        box->setText({});
    }
    ownerShown_ = ownerValues();
    database::Recordset owner;
    owner.Open(owner_sql::ownerQuery(ownerKey), Connection::cn());
    if (owner.Eof()) {
        return;
    }
    for (std::size_t i = 0; i < Text2.size(); ++i) {
        const QString column = owner_fields::kOwnerBoxColumns[i].toString();
        Text2[i]->setText(database::fieldText(owner.Fields(column)));
    }
    Check1->setChecked(owner.Fields(QStringLiteral("短信")).toBool());
    ownerShown_ = ownerValues();
}

void frm业户信息::showMembers(const QString& ownerKey) {
    database::Recordset member;
    member.Open(owner_sql::membersQuery(ownerKey), Connection::cn());
    Grid2->setRows(1);
    Grid2->hide();
    for (int col = 0; col < Grid2->Cols(); ++col) {
        Grid2->setColAlignmentFixed(col, widgets::flexAlignCenterCenter);
    }
    const int keyCol = Grid2->Cols() - 1;
    Grid2->setColWidth(keyCol, 0);
    while (!member.Eof()) {
        Grid2->setRows(Grid2->Rows() + 1);
        const int row = Grid2->Rows() - 1;
        showMemberLine(row, member);
        Grid2->setTextMatrix(row, keyCol,
                             database::requireText(member.Fields(QStringLiteral("ZL_ID"))));
        member.MoveNext();
    }
    Grid2->show();
}

// Members can be added only while the household has none; otherwise a row is picked first. A
// member the panel held that is no longer listed is no longer the panel's.
void frm业户信息::setMemberButtons() {
    if (Grid2->Rows() == 1) {
        Command6->setText(QStringLiteral("取消新增"));
        Command7->setEnabled(false);
        Command5->setEnabled(true);
        if (panelMember_ != PanelMember::New) {
            holdInPanel(PanelMember::New);
        }
    } else {
        Command7->setEnabled(false);
        Command6->setEnabled(false);
        if (panelMember_ == PanelMember::Stored && memberLine(panelKey_) == 0) {
            holdInPanel(PanelMember::Nobody);
        }
    }
}

void frm业户信息::showMemberLine(int row, const database::Recordset& member) {
    Grid2->setTextMatrix(row, 0, QString::number(row));
    for (int col = 1; col <= static_cast<int>(owner_fields::kMemberGridColumns.size()); ++col) {
        const QString column = owner_fields::kMemberGridColumns[col - 1].toString();
        Grid2->setTextMatrix(row, col, database::fieldText(member.Fields(column)));
    }
}

void frm业户信息::Command3_Click() {
    if (runtime::trimBlanks(Text2[0]->text()).isEmpty()) {
        widgets::MsgBox(QStringLiteral("请输入业户姓名"));
        return;
    }
    if (!ownerStorable()) {
        return;
    }
    // Left in place by a failing save, as the user's sign that it did not finish.
    setCursor(Qt::WaitCursor);
    try {
        saveOwner();
    } catch (const database::ConnectionLost&) {
        reloadAfterUnknownOutcome();
        throw;
    }
    ownerShown_ = ownerValues();
    Frame1[1]->setEnabled(true);
    unsetCursor();
}

// Refuses, naming the field, an edited date that is no date or a text its column cannot hold.
bool frm业户信息::ownerStorable() {
    const QStringList shown = ownerShown_;
    for (std::size_t i = 0; i < Text2.size(); ++i) {
        const QString text = Text2[i]->text();
        if (text == shown.value(static_cast<int>(i))) {
            continue;
        }
        const QString column = owner_fields::kOwnerBoxColumns[i].toString();
        const QString label = Label1.at(owner_fields::kOwnerBoxLabels[i])->text();
        QString refusal;
        if (std::find(owner_fields::kOwnerDateBoxes.begin(), owner_fields::kOwnerDateBoxes.end(),
                      i) != owner_fields::kOwnerDateBoxes.end()) {
            if (!text.isEmpty() && !database::IsDate(text)) {
                refusal = QStringLiteral("输入了非法日期");
            }
        } else if (!owner_input::fitsColumn(text, kOwnerTable, column)) {
            refusal = owner_input::tooLongMessage(label, kOwnerTable, column);
        }
        if (!refusal.isEmpty()) {
            widgets::MsgBox(refusal);
            Text2[i]->setFocus();
            return false;
        }
    }
    return true;
}

void frm业户信息::saveOwner() {
    database::Recordset owner;
    if (!Frame1[0]->Tag.isEmpty()) {
        owner.Open(owner_sql::ownerQuery(Frame1[0]->Tag), Connection::cn(), database::adOpenKeyset,
                   database::adLockOptimistic);
        writeOwnerBoxes(owner, false);
        owner.Update();
        return;
    }
    owner.Open(owner_sql::newOwnerQuery(), Connection::cn(), database::adOpenKeyset,
               database::adLockOptimistic);
    owner.AddNew();
    owner.setField(QStringLiteral("S_ID"), textAsIs(Frame1[1]->Tag));
    writeOwnerBoxes(owner, true);
    owner.setField(QStringLiteral("说明"), QStringLiteral("新进户"));
    owner.Update();
    Frame1[0]->Tag = database::fieldText(owner.Fields(QStringLiteral("Zh_id")));
}

// A stored owner gets only what the user changed: what nobody touched stays as stored, line
// ends and all.
void frm业户信息::writeOwnerBoxes(database::Recordset& owner, bool everyBox) const {
    const QStringList values = ownerValues();
    for (std::size_t i = 0; i < Text2.size(); ++i) {
        if (everyBox || values[static_cast<int>(i)] != ownerShown_.value(static_cast<int>(i))) {
            owner.setField(owner_fields::kOwnerBoxColumns[i].toString(),
                           textOrNull(Text2[i]->text()));
        }
    }
    if (everyBox || values.last() != ownerShown_.value(values.size() - 1)) {
        owner.setField(QStringLiteral("短信"), Check1->isChecked() ? 1 : 0);
    }
}

QStringList frm业户信息::ownerValues() const {
    QStringList values;
    for (const widgets::TextBox* box : Text2) {
        values << box->text();
    }
    values << (Check1->isChecked() ? QStringLiteral("1") : QStringLiteral("0"));
    return values;
}

// After a save whose fate is unknown the screen shows what the database holds, when it can.
void frm业户信息::reloadAfterUnknownOutcome() {
    if (Frame1[0]->Tag.isEmpty()) {
        return;
    }
    try {
        Form_Activate();
    } catch (const std::exception&) {
        // The message about the save says what matters; the screen reloads at the next activation.
    }
}

void frm业户信息::Command2_Click() {
    Unload();
}

bool frm业户信息::Form_QueryUnload() {
    if (!ownerEdited() && !memberEdited()) {
        return true;
    }
    return widgets::MsgBox(
               QStringLiteral("业户信息或成员信息已修改，尚未保存。确定要关闭并放弃这些修改吗？"),
               widgets::vbYesNo) == widgets::vbYes;
}

void frm业户信息::Form_Unload() {
    if (!Frame1[0]->Tag.isEmpty() && opener_ != nullptr) {
        opener_->receiveOwnerKey(Frame1[0]->Tag);
    }
}

}  // namespace qivo
