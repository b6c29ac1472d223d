#include "review/review_sql.h"

#include "db/address_sql.h"

namespace qivo::review_sql {

QString pendingListQuery() {
    return QStringLiteral("Select 业户互联网.*, GYD_Name As 项目, ") + db::DZ() +
           QStringLiteral(" From 业户互联网 Inner Join 业主表 D On 业户互联网.ZH_ID = D.ZH_ID") +
           QStringLiteral(" Inner Join 室表 C On D.S_ID = C.S_ID") +
           QStringLiteral(" Inner Join 楼表 B On C.L_ID = B.L_ID") +
           QStringLiteral(" Inner Join 设置管理处 A On A.GYD_DH = B.管理处") +
           QStringLiteral(" where 业户互联网.审核人 Is Null And 业户互联网.属性 = '业主' ") +
           db::AddressOrder();
}

QString ownerQuery(qint32 ownerId) {
    return QStringLiteral("Select * From 业主表 Where ZH_ID=") + QString::number(ownerId);
}

QString approveStatement(const QDate& date, const QString& reviewer, qint32 registration) {
    return QStringLiteral("Update 业户互联网 Set 审核日期 ='") +
           date.toString(QStringLiteral("yyyyMMdd")) + QStringLiteral("', 审核人 = '") + reviewer +
           QStringLiteral("'") + QStringLiteral(" Where HLWID = ") + QString::number(registration);
}

QString rejectStatement(qint32 registration) {
    return QStringLiteral("Delete 业户互联网 Where HLWID= ") + QString::number(registration);
}

}  // namespace qivo::review_sql
