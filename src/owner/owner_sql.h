#pragma once

#include <QString>

namespace qivo::owner_sql {

// The owner row shown and updated by the owner screen.
QString ownerQuery(const QString& ownerKey);

// An empty owner set, opened only to add a new owner (carries 说明 as well).
QString newOwnerQuery();

// The members of a household, in the order the database returns them.
QString membersQuery(const QString& ownerKey);

// An empty member set, opened only to add a new member.
QString newMemberQuery();

// One member row, opened to update it.
QString memberQuery(const QString& memberKey);

// Removes one member.
QString deleteMemberStatement(const QString& memberKey);

}  // namespace qivo::owner_sql
