#include "review/review_form.h"

#include "accounts/register_opener.h"
#include "database/ado.h"
#include "review/mismatch_marks.h"
#include "review/review_sql.h"
#include "runtime/end.h"
#include "session/connection.h"
#include "session/session_values.h"
#include "widgets/msgbox.h"

namespace qivo {

namespace {

constexpr int kReviewCol = 7;

}  // namespace

void frmQivo账号审核::Form_Load() {
    ClearAccountFields();
    ClearOwnerFields();
    prepareListGrid();
    showSignedInUser();
    LoadPendingList();
}

void frmQivo账号审核::Form_Unload() {
    runtime::End();
}

// A list that cannot be read keeps what it showed, without a message; the status bar says that
// it is old.
void frmQivo账号审核::LoadPendingList() {
    closePanel();
    try {
        fillList(review_sql::pendingListQuery(), [this](int row, const database::Recordset&) {
            MSFlexGrid1->setTextMatrix(row, kReviewCol, QStringLiteral("审核"));
            MSFlexGrid1->setCol(kReviewCol);
            MSFlexGrid1->setCellForeColor(kBlue);
        });
    } catch (const std::exception& error) {
        showListNotReloaded(error);
    }
}

void frmQivo账号审核::MSFlexGrid1_Click() {
    if (MSFlexGrid1->Col() == MSFlexGrid1->Cols() - 2) {
        MSFlexGrid1_DblClick();
    }
}

void frmQivo账号审核::MSFlexGrid1_DblClick() {
    if (MSFlexGrid1->Rows() == 1) {
        return;
    }
    const int row = MSFlexGrid1->Row();
    openPanel(row);
    ShowAccountRow(row);
    ShowOwner(MSFlexGrid1->TextMatrix(row, MSFlexGrid1->Cols() - 1).toInt());
    markMismatches();
}

void frmQivo账号审核::ShowAccountRow(qint32 row) {
    copyAccountCells(row);
}

// Any failure reading the owner ends the fill without a message box. The boxes are emptied
// first, so they never show another household's record, and the status bar says so.
void frmQivo账号审核::ShowOwner(qint32 ownerId) {
    ownerShown_ = false;
    ClearOwnerFields();
    try {
        database::Recordset owner;
        owner.Open(review_sql::ownerQuery(ownerId), Connection::cn());
        if (owner.Eof()) {
            ClearOwnerFields();
            widgets::MsgBox(QStringLiteral("数据错误"), widgets::vbOKOnly);
            return;
        }
        fillOwnerFields(owner);
        ownerShown_ = true;
    } catch (const std::exception& error) {
        ClearOwnerFields();
        reportOwnerNotRead(error);
    }
}

// Name, identity number and mobile as registered against the owner's record, when it was read.
void frmQivo账号审核::markMismatches() {
    const std::array<std::pair<int, int>, 3> compared{{{2, 0}, {3, 3}, {4, 2}}};
    for (const auto& [account, owner] : compared) {
        if (ownerShown_) {
            review::markMismatch(Text1[account], Text2[owner]->text());
        } else {
            review::clearMismatch(Text1[account]);
        }
    }
}

void frmQivo账号审核::Command3_Click() {
    decideOpenedRow(QStringLiteral("确认该Qivo账号审核通过？"), QStringLiteral("已审核通过"),
                    [](qint32 registration) {
                        return review_sql::approveStatement(QDate::currentDate(), CurrentUserName,
                                                            registration);
                    });
}

void frmQivo账号审核::Command1_Click() {
    decideOpenedRow(QStringLiteral("确认该Qivo账号审核不通过？"), QStringLiteral("已审核不通过"),
                    &review_sql::rejectStatement);
}

// Asks the question; on Yes decides the registration the panel shows while it is still pending,
// reloads the list and says what was done.
void frmQivo账号审核::decideOpenedRow(const QString& question, const QString& done,
                                      const std::function<QString(qint32)>& statement) {
    if (widgets::MsgBox(question, widgets::vbYesNo) == widgets::vbNo) {
        return;
    }
    const QString account = openedAccount();
    if (decide(statement(openedRegistration()) + review_sql::stillPending(),
               [this] { LoadPendingList(); })) {
        reportDone(done, account);
    }
}

void frmQivo账号审核::Command2_Click() {
    closePanel();
}

void frmQivo账号审核::Command4_Click() {
    LoadPendingList();
}

void frmQivo账号审核::Command5_Click() {
    runtime::End();
}

void frmQivo账号审核::Command6_Click() {
    showApprovedRegister(*this);
}

}  // namespace qivo
