#include "register/register_form.h"

#include "database/ado.h"
#include "register/register_sql.h"
#include "session/connection.h"
#include "widgets/msgbox.h"

namespace qivo {

namespace {

constexpr int kStateCol = 7;
constexpr int kOpenCol = 8;

// The household state: only the exact marker of a current household shows no state. The list
// reads it on every row, as bytes where the engine has them.
QString householdState(const database::Recordset& record) {
    const QString note = QStringLiteral("说明");
    const std::optional<QByteArrayView> bytes = record.fieldUtf8(note);
    const bool movedIn =
        bytes ? QUtf8StringView(bytes->data(), bytes->size()) == QUtf8StringView(u8"新进户")
              : record.Fields(note).toString() == QStringLiteral("新进户");
    return movedIn ? QString() : QStringLiteral("已迁出");
}

}  // namespace

void frmQivo账号一览表::Form_Load() {
    ClearAccountFields();
    ClearOwnerFields();
    prepareListGrid();
    MSFlexGrid1->setColWidth(MSFlexGrid1->Cols() - 1, 0);
    MSFlexGrid2->setRows(1);
    for (int col = 0; col < MSFlexGrid2->Cols(); ++col) {
        MSFlexGrid2->setColAlignmentFixed(col, widgets::flexAlignCenterCenter);
    }
    showSignedInUser();
    LoadApprovedList();
}

// A list that cannot be read keeps what it showed, without a message; the status bar says that
// it is old.
void frmQivo账号一览表::LoadApprovedList() {
    closePanel();
    try {
        fillList(register_sql::approvedListQuery(),
                 [this](int row, const database::Recordset& record) {
                     MSFlexGrid1->setTextMatrix(row, kStateCol, householdState(record));
                     MSFlexGrid1->setTextMatrix(row, kOpenCol, QStringLiteral("查看\\终止"));
                     MSFlexGrid1->setCol(kOpenCol);
                     MSFlexGrid1->setCellForeColor(kBlue);
                     MSFlexGrid1->setCol(0);
                 });
    } catch (const std::exception& error) {
        showListNotReloaded(error);
    }
}

void frmQivo账号一览表::MSFlexGrid1_Click() {
    if (MSFlexGrid1->Rows() == 1) {
        return;
    }
    if (MSFlexGrid1->Col() == kOpenCol) {
        MSFlexGrid1_DblClick();
    }
    MSFlexGrid1->setCol(0);
    MSFlexGrid1->setColSel(MSFlexGrid1->Cols() - 1);
}

void frmQivo账号一览表::MSFlexGrid1_DblClick() {
    if (MSFlexGrid1->Rows() == 1) {
        return;
    }
    // The household is the opened one before anything can fail, so 终止 never acts on the one
    // opened before.
    const int row = MSFlexGrid1->Row();
    openPanel(row);
    FillAccountFields(row);
    const QString ownerKey = MSFlexGrid1->TextMatrix(row, MSFlexGrid1->Cols() - 1);
    LoadOwnerDetail(ownerKey.toInt());
    LoadMemberAccounts(ownerKey);
}

void frmQivo账号一览表::FillAccountFields(qint32 row) {
    copyAccountCells(row);
}

// A missing owner row or a Null name ends the fill without a message box. The boxes are
// emptied first, so they never show another household's record, and the status bar says so.
void frmQivo账号一览表::LoadOwnerDetail(qint32 zhId) {
    ClearOwnerFields();
    try {
        database::Recordset owner;
        owner.Open(register_sql::ownerDetailQuery(zhId), Connection::cn());
        fillOwnerFields(owner);
    } catch (const std::exception& error) {
        ClearOwnerFields();
        reportOwnerNotRead(error);
    }
}

// Any failure ends the fill quietly and leaves the grid hidden, never holding another
// household's accounts: the grid is emptied before the query runs.
void frmQivo账号一览表::LoadMemberAccounts(const QString& zhId) {
    MSFlexGrid2->setRows(1);
    MSFlexGrid2->setVisible(false);
    try {
        fillMemberAccounts(zhId);
    } catch (const std::exception&) {
        return;
    }
    MSFlexGrid2->setVisible(true);
}

void frmQivo账号一览表::fillMemberAccounts(const QString& zhId) {
    database::Recordset member;
    member.Open(register_sql::memberAccountsQuery(zhId), Connection::cn());
    while (!member.Eof()) {
        MSFlexGrid2->setRows(MSFlexGrid2->Rows() + 1);
        const int row = MSFlexGrid2->Rows() - 1;
        MSFlexGrid2->setRow(row);
        MSFlexGrid2->setTextMatrix(row, 0, QString::number(row));
        MSFlexGrid2->setTextMatrix(row, 1,
                                   database::fieldText(member.Fields(QStringLiteral("Qivo号"))));
        MSFlexGrid2->setTextMatrix(row, 2,
                                   database::fieldText(member.Fields(QStringLiteral("姓名"))));
        MSFlexGrid2->setTextMatrix(row, 3,
                                   database::fieldText(member.Fields(QStringLiteral("身份证"))));
        MSFlexGrid2->setTextMatrix(row, 4,
                                   database::fieldText(member.Fields(QStringLiteral("手机"))));
        MSFlexGrid2->setRowData(row, member.Fields(QStringLiteral("HLWID")).toInt());
        member.MoveNext();
    }
}

// Terminates the opened owner's account and every member account the panel lists, in one
// batch that runs whole or not at all: not at all once a colleague got there first.
void frmQivo账号一览表::Command1_Click() {
    if (widgets::MsgBox(QStringLiteral("确认要终止这个Qivo账号"), widgets::vbYesNo) ==
        widgets::vbNo) {
        return;
    }
    if (MSFlexGrid2->Rows() >= 2 &&
        widgets::MsgBox(QStringLiteral("该业主名下的Qivo账号将同时终止"), widgets::vbYesNo) ==
            widgets::vbNo) {
        return;
    }
    QList<qint32> members;
    for (int row = 1; row < MSFlexGrid2->Rows(); ++row) {
        members << MSFlexGrid2->RowData(row);
    }
    QString account = openedAccount();
    if (!members.isEmpty()) {
        account += QStringLiteral("，连同名下成员账号 %1 个").arg(members.size());
    }
    if (decide(register_sql::terminateBatch(openedRegistration(), members,
                                            register_sql::stillApproved()),
               [this] { LoadApprovedList(); })) {
        reportDone(QStringLiteral("已终止"), account);
    }
}

void frmQivo账号一览表::Command2_Click() {
    closePanel();
}

void frmQivo账号一览表::Command4_Click() {
    LoadApprovedList();
}

void frmQivo账号一览表::Command5_Click() {
    Unload();
}

}  // namespace qivo
