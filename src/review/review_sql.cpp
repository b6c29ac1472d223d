#include "review/review_sql.h"

#include "db/address_sql.h"
#include "db/sql_literal.h"

namespace qivo::review_sql {

QString pendingListQuery() {
    return QStringLiteral("Select 业户互联网.*, GYD_Name As 项目, ") + db::DZ() +
           db::RegistrationJoins() +
           QStringLiteral(" where 业户互联网.审核人 Is Null And 业户互联网.属性 = '业主' ") +
           db::AddressOrder();
}

QString ownerQuery(qint32 ownerId) {
    return QStringLiteral("Select * From 业主表 Where ZH_ID=") + QString::number(ownerId);
}

QString approveStatement(const QDate& date, const QString& reviewer, qint32 registration) {
    return QStringLiteral("Update 业户互联网 Set 审核日期 ='") +
           date.toString(QStringLiteral("yyyyMMdd")) + QStringLiteral("', 审核人 = '") +
           db::sqlText(reviewer) + QStringLiteral("'") + QStringLiteral(" Where HLWID = ") +
           QString::number(registration);
}

QString rejectStatement(qint32 registration) {
    return QStringLiteral("Delete 业户互联网 Where HLWID= ") + QString::number(registration);
}

QString stillPending() {
    return QStringLiteral(" And 审核人 Is Null");
}

}  // namespace qivo::review_sql
