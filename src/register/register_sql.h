#pragma once

#include <QList>
#include <QString>

namespace qivo::register_sql {

// Every approved owner account with its estate, owner address and household note.
QString approvedListQuery();
QString ownerDetailQuery(qint32 ownerId);
// Every account of the household but the owner's own, pending ones included.
QString memberAccountsQuery(const QString& ownerId);
// The owner's account first, then the member accounts in the order given, as one batch; the
// owner's delete also has to meet ownerGuard.
QString terminateBatch(qint32 ownerAccount, const QList<qint32>& memberAccounts,
                       const QString& ownerGuard = {});
// The owner's guard at a termination: the account is still there as approved.
QString stillApproved();

}  // namespace qivo::register_sql
