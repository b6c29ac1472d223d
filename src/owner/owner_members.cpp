#include "database/ado.h"
#include "database/dates.h"
#include "owner/box_value.h"
#include "owner/owner_fields.h"
#include "owner/owner_form.h"
#include "owner/owner_sql.h"
#include "session/connection.h"
#include "widgets/msgbox.h"

namespace qivo {

namespace {

const QString kAddMode = QStringLiteral("取消新增");
const QString kEditCaption = QStringLiteral("新增(&A)");

}  // namespace

// The text box that edits a member grid column; none for the two combo columns.
widgets::TextBox* frm业户信息::memberBox(int gridCol) const {
    if (gridCol == owner_fields::kSexColumn || gridCol == owner_fields::kMaritalColumn) {
        return nullptr;
    }
    const int skippedCombos = gridCol > owner_fields::kMaritalColumn ? 2
                              : gridCol > owner_fields::kSexColumn   ? 1
                                                                     : 0;
    return Text3[static_cast<std::size_t>(gridCol - 1 - skippedCombos)];
}

void frm业户信息::Grid2_Click() {
    if (Grid2->Rows() == 1) {
        return;
    }
    Command6->setText(kEditCaption);
    Command5->setEnabled(true);
    const int row = Grid2->Row();
    for (int col = 1; col <= static_cast<int>(owner_fields::kMemberGridColumns.size()); ++col) {
        if (widgets::TextBox* box = memberBox(col)) {
            box->setText(Grid2->TextMatrix(row, col));
        }
    }
    // Anything but "男" counts as female, an empty cell included.
    Combo4->setCurrentIndex(Grid2->TextMatrix(row, owner_fields::kSexColumn) == u"男" ? 0 : 1);
    Combo5->setCurrentIndex(Combo5->findText(Grid2->TextMatrix(row, owner_fields::kMaritalColumn),
                                             Qt::MatchExactly | Qt::MatchCaseSensitive));
    Command7->setEnabled(true);
}

void frm业户信息::Command6_Click() {
    if (Command6->text() != kEditCaption) {
        Grid2_Click();
        return;
    }
    Command6->setText(kAddMode);
    Command7->setEnabled(false);
    Command5->setEnabled(true);
    for (widgets::TextBox* box : Text3) {
        box->setText({});
    }
    Combo5->setCurrentIndex(-1);
    Text3[0]->setFocus();
}

void frm业户信息::Command7_Click() {
    const int row = Grid2->Row();
    const QString name = Grid2->TextMatrix(row, 1);
    if (widgets::MsgBox("确认要删除" + name + "?", widgets::vbYesNo) != widgets::vbYes) {
        return;
    }
    const int keyCol = Grid2->Cols() - 1;
    Connection::cn().Execute(owner_sql::deleteMemberStatement(Grid2->TextMatrix(row, keyCol)));
    if (Grid2->Rows() >= 3) {
        Grid2->RemoveItem(row);
        for (int line = row; line < Grid2->Rows(); ++line) {
            Grid2->setTextMatrix(line, 0, QString::number(line));
        }
        Command6->setEnabled(false);
    } else {
        Grid2->setRows(1);
        Command6->setText(kAddMode);
    }
    Command7->setEnabled(false);
}

void frm业户信息::Command5_Click() {
    const QString birthDate = Text3[2]->text();
    if (!birthDate.isEmpty() && !database::IsDate(birthDate)) {
        widgets::MsgBox(QStringLiteral("输入了非法日期"));
        Text3[2]->setFocus();
        return;
    }
    if (Command6->text() == kAddMode) {
        insertMember();
    } else {
        updateSelectedMember();
    }
}

void frm业户信息::insertMember() {
    database::Recordset member;
    member.Open(owner_sql::newMemberQuery(), Connection::cn(), database::adOpenKeyset,
                database::adLockOptimistic);
    member.AddNew();
    member.setField(QStringLiteral("Zh_id"), textAsIs(Frame1[0]->Tag));
    writeMemberFields(member);
    member.Update();
    Grid2->setRows(Grid2->Rows() + 1);
    const int row = Grid2->Rows() - 1;
    showMemberLine(row, member);
    Grid2->setTextMatrix(row, Grid2->Cols() - 1,
                         database::fieldText(member.Fields(QStringLiteral("ZL_ID"))));
    // The bare caption, unlike the design's "新增(&A)": the next click of Command6 cancels.
    Command6->setText(QStringLiteral("新增"));
    Command7->setEnabled(true);
}

void frm业户信息::updateSelectedMember() {
    const int row = Grid2->Row();
    const QString memberKey = Grid2->TextMatrix(row, Grid2->Cols() - 1);
    database::Recordset member;
    member.Open(owner_sql::memberQuery(memberKey), Connection::cn(), database::adOpenKeyset,
                database::adLockOptimistic);
    writeMemberFields(member);
    member.Update();
    showMemberLine(row, member);
}

void frm业户信息::writeMemberFields(database::Recordset& member) const {
    for (int col = 1; col <= static_cast<int>(owner_fields::kMemberGridColumns.size()); ++col) {
        member.setField(owner_fields::kMemberGridColumns[col - 1].toString(), memberValue(col));
    }
}

// The value saved for a member grid column. Sex is stored as the combo shows it, so an empty
// combo stores empty text; every other empty control stores Null.
QVariant frm业户信息::memberValue(int gridCol) const {
    if (gridCol == owner_fields::kSexColumn) {
        return textAsIs(Combo4->currentText());
    }
    if (gridCol == owner_fields::kMaritalColumn) {
        return textOrNull(Combo5->currentText());
    }
    return textOrNull(memberBox(gridCol)->text());
}

}  // namespace qivo
