#pragma once

#include <QDate>
#include <QString>

namespace qivo::review_sql {

// Every owner registration nobody has reviewed yet, with its estate and owner address.
QString pendingListQuery();
QString ownerQuery(qint32 ownerId);
// Stamps the registration as approved; the date goes as yyyymmdd, which SQL Server reads the
// same under every language setting.
QString approveStatement(const QDate& date, const QString& reviewer, qint32 registration);
QString rejectStatement(qint32 registration);
// Added to either decision: it changes the registration only while it is still pending.
QString stillPending();

}  // namespace qivo::review_sql
