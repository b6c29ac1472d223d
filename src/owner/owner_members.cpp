#include "database/ado.h"
#include "database/dates.h"
#include "owner/box_value.h"
#include "owner/owner_fields.h"
#include "owner/owner_form.h"
#include "owner/owner_input.h"
#include "owner/owner_sql.h"
#include "session/connection.h"
#include "widgets/msgbox.h"

namespace qivo {

namespace {

const QString kAddMode = QStringLiteral("取消新增");
const QString kEditCaption = QStringLiteral("新增(&A)");
const QString kMemberTable = QStringLiteral("ZHZL");
constexpr int kMemberColumns = static_cast<int>(owner_fields::kMemberGridColumns.size());

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

QWidget* frm业户信息::memberControl(int gridCol) const {
    if (gridCol == owner_fields::kSexColumn) {
        return Combo4;
    }
    if (gridCol == owner_fields::kMaritalColumn) {
        return Combo5;
    }
    return memberBox(gridCol);
}

// What the panel shows, by member grid column 1 … 15.
QStringList frm业户信息::memberValues() const {
    QStringList values;
    for (int col = 1; col <= kMemberColumns; ++col) {
        if (col == owner_fields::kSexColumn) {
            values << Combo4->currentText();
        } else if (col == owner_fields::kMaritalColumn) {
            values << Combo5->currentText();
        } else {
            values << memberBox(col)->text();
        }
    }
    return values;
}

bool frm业户信息::memberEdited() const {
    return panelMember_ != PanelMember::Nobody && memberValues() != memberShown_;
}

// From now on the panel's values are those of this member, as they stand.
void frm业户信息::holdInPanel(PanelMember member, const QString& key) {
    panelMember_ = member;
    panelKey_ = member == PanelMember::Stored ? key : QString();
    memberShown_ = memberValues();
}

// The grid line of a stored member; 0 when none lists it.
int frm业户信息::memberLine(const QString& key) const {
    const int keyCol = Grid2->Cols() - 1;
    for (int row = 1; row < Grid2->Rows(); ++row) {
        if (Grid2->TextMatrix(row, keyCol) == key) {
            return row;
        }
    }
    return 0;
}

// Before the panel takes other values: unsaved edits go only when the user says so.
bool frm业户信息::mayDiscardMemberEdits() {
    return !memberEdited() ||
           widgets::MsgBox(QStringLiteral("成员信息已修改，尚未保存。要放弃这些修改吗？"),
                           widgets::vbYesNo) == widgets::vbYes;
}

void frm业户信息::Grid2_Click() {
    if (Grid2->Rows() == 1) {
        return;
    }
    if (!mayDiscardMemberEdits()) {
        // The highlighted line stays the one whose values the panel holds.
        if (const int line = memberLine(panelKey_); line > 0) {
            Grid2->setRow(line);
        }
        return;
    }
    Command6->setText(kEditCaption);
    Command5->setEnabled(true);
    const int row = Grid2->Row();
    // The header line is no member: the panel keeps the member it holds.
    if (row < 1) {
        return;
    }
    for (int col = 1; col <= kMemberColumns; ++col) {
        if (widgets::TextBox* box = memberBox(col)) {
            box->setText(Grid2->TextMatrix(row, col));
        }
    }
    // Anything but "男" counts as female, an empty cell included.
    Combo4->setCurrentIndex(Grid2->TextMatrix(row, owner_fields::kSexColumn) == u"男" ? 0 : 1);
    Combo5->setCurrentIndex(Combo5->findText(Grid2->TextMatrix(row, owner_fields::kMaritalColumn),
                                             Qt::MatchExactly | Qt::MatchCaseSensitive));
    holdInPanel(PanelMember::Stored, Grid2->TextMatrix(row, Grid2->Cols() - 1));
    Command7->setEnabled(true);
}

// Moving through the list with the keys shows each member as a click does.
void frm业户信息::Grid2_RowColChange() {
    Grid2_Click();
}

void frm业户信息::Grid2_KeyPress(int keyAscii) {
    if (keyAscii == 13 || keyAscii == 32) {
        Grid2_Click();
    }
}

void frm业户信息::Command6_Click() {
    if (Command6->text() != kEditCaption) {
        Grid2_Click();
        return;
    }
    if (!mayDiscardMemberEdits()) {
        return;
    }
    Command6->setText(kAddMode);
    Command7->setEnabled(false);
    Command5->setEnabled(true);
    for (widgets::TextBox* box : Text3) {
        box->setText({});
    }
    Combo5->setCurrentIndex(-1);
    holdInPanel(PanelMember::New);
    Text3[0]->setFocus();
}

// Deletes the member the panel shows.
void frm业户信息::Command7_Click() {
    const int row = panelMember_ == PanelMember::Stored ? memberLine(panelKey_) : 0;
    if (row < 1) {
        return;
    }
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
        panelMember_ = PanelMember::Nobody;
    } else {
        Grid2->setRows(1);
        Command6->setText(kAddMode);
        panelMember_ = PanelMember::New;
    }
    Command7->setEnabled(false);
}

void frm业户信息::Command5_Click() {
    if (Frame1[0]->Tag.isEmpty()) {
        widgets::MsgBox(QStringLiteral("请先保存业户信息（确定(&T)），再保存成员。"));
        Text2[0]->setFocus();
        return;
    }
    const QString birthDate = Text3[2]->text();
    if (!birthDate.isEmpty() && !database::IsDate(birthDate)) {
        widgets::MsgBox(QStringLiteral("输入了非法日期"));
        Text3[2]->setFocus();
        return;
    }
    const bool adding = Command6->text() == kAddMode;
    if (!adding && panelMember_ != PanelMember::Stored) {
        widgets::MsgBox(QStringLiteral("请先在列表中选择要修改的成员（单击或用方向键）。"));
        Grid2->setFocus();
        return;
    }
    if (!memberStorable()) {
        return;
    }
    try {
        if (adding) {
            insertMember();
        } else {
            updatePanelMember();
        }
    } catch (const database::ConnectionLost&) {
        reloadAfterUnknownOutcome();
        throw;
    }
}

// Refuses, naming the field, an edited text its column cannot hold.
bool frm业户信息::memberStorable() {
    const QStringList values = memberValues();
    for (int col = 1; col <= kMemberColumns; ++col) {
        const QString column = owner_fields::kMemberGridColumns[col - 1].toString();
        if (values[col - 1] == memberShown_.value(col - 1) ||
            owner_input::fitsColumn(values[col - 1], kMemberTable, column)) {
            continue;
        }
        widgets::MsgBox(owner_input::tooLongMessage(
            Label1.at(owner_fields::kMemberLabels[col - 1])->text(), kMemberTable, column));
        memberControl(col)->setFocus();
        return false;
    }
    return true;
}

void frm业户信息::insertMember() {
    database::Recordset member;
    member.Open(owner_sql::newMemberQuery(), Connection::cn(), database::adOpenKeyset,
                database::adLockOptimistic);
    member.AddNew();
    member.setField(QStringLiteral("Zh_id"), textAsIs(Frame1[0]->Tag));
    writeMemberFields(member, true);
    member.Update();
    Grid2->setRows(Grid2->Rows() + 1);
    const int row = Grid2->Rows() - 1;
    showMemberLine(row, member);
    const QString key = database::fieldText(member.Fields(QStringLiteral("ZL_ID")));
    Grid2->setTextMatrix(row, Grid2->Cols() - 1, key);
    // The bare caption, unlike the design's "新增(&A)": the next click of Command6 cancels.
    Command6->setText(QStringLiteral("新增"));
    Command7->setEnabled(true);
    // The panel now shows the stored member: the next save updates it.
    holdInPanel(PanelMember::Stored, key);
}

// Updates the member the panel holds, wherever the grid's current line has gone, and patches
// that member's line.
void frm业户信息::updatePanelMember() {
    database::Recordset member;
    member.Open(owner_sql::memberQuery(panelKey_), Connection::cn(), database::adOpenKeyset,
                database::adLockOptimistic);
    writeMemberFields(member, false);
    member.Update();
    if (const int row = memberLine(panelKey_); row > 0) {
        showMemberLine(row, member);
    }
    memberShown_ = memberValues();
}

// A new member gets every field; a stored one only what the user changed, so an empty sex the
// panel shows as "女" stays empty and a remark keeps its line ends.
void frm业户信息::writeMemberFields(database::Recordset& member, bool everyField) const {
    const QStringList values = memberValues();
    for (int col = 1; col <= kMemberColumns; ++col) {
        if (everyField || values[col - 1] != memberShown_.value(col - 1)) {
            member.setField(owner_fields::kMemberGridColumns[col - 1].toString(), memberValue(col));
        }
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
