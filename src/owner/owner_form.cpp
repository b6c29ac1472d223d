#include "owner/owner_form.h"

#include "database/ado.h"
#include "owner/box_value.h"
#include "owner/owner_fields.h"
#include "owner/owner_key_receiver.h"
#include "owner/owner_sql.h"
#include "runtime/blanks.h"
#include "session/connection.h"
#include "widgets/msgbox.h"

namespace qivo {

void frm业户信息::Form_Activate() {
    const QString ownerKey = Frame1[0]->Tag;
    if (ownerKey.isEmpty()) {
        Frame1[1]->setEnabled(true);
        clearAllBoxes();
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

void frm业户信息::showOwner(const QString& ownerKey) {
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

// Members can be added only while the household has none; otherwise a row is picked first.
void frm业户信息::setMemberButtons() {
    if (Grid2->Rows() == 1) {
        Command6->setText(QStringLiteral("取消新增"));
        Command7->setEnabled(false);
        Command5->setEnabled(true);
    } else {
        Command7->setEnabled(false);
        Command6->setEnabled(false);
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
    // Left in place by a failing save, as the user's sign that it did not finish.
    setCursor(Qt::WaitCursor);
    database::Recordset owner;
    if (!Frame1[0]->Tag.isEmpty()) {
        owner.Open(owner_sql::ownerQuery(Frame1[0]->Tag), Connection::cn(), database::adOpenKeyset,
                   database::adLockOptimistic);
        writeOwnerBoxes(owner);
        owner.setField(QStringLiteral("短信"), Check1->isChecked() ? 1 : 0);
        owner.Update();
    } else {
        owner.Open(owner_sql::newOwnerQuery(), Connection::cn(), database::adOpenKeyset,
                   database::adLockOptimistic);
        owner.AddNew();
        owner.setField(QStringLiteral("S_ID"), textAsIs(Frame1[1]->Tag));
        writeOwnerBoxes(owner);
        owner.setField(QStringLiteral("说明"), QStringLiteral("新进户"));
        owner.setField(QStringLiteral("短信"), Check1->isChecked() ? 1 : 0);
        owner.Update();
        Frame1[0]->Tag = database::fieldText(owner.Fields(QStringLiteral("Zh_id")));
    }
    Frame1[1]->setEnabled(true);
    unsetCursor();
}

void frm业户信息::writeOwnerBoxes(database::Recordset& owner) const {
    for (std::size_t i = 0; i < Text2.size(); ++i) {
        owner.setField(owner_fields::kOwnerBoxColumns[i].toString(), textOrNull(Text2[i]->text()));
    }
}

void frm业户信息::Command2_Click() {
    Unload();
}

void frm业户信息::Form_Unload() {
    if (!Frame1[0]->Tag.isEmpty() && opener_ != nullptr) {
        opener_->receiveOwnerKey(Frame1[0]->Tag);
    }
}

}  // namespace qivo
