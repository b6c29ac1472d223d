#include "register/register_sql.h"

#include "db/address_sql.h"

namespace qivo::register_sql {

QString approvedListQuery() {
    return QStringLiteral("Select 业户互联网.*, GYD_Name As 项目, D.说明, ") + db::DZ() +
           QStringLiteral(" From 业户互联网 Inner Join 业主表 D On 业户互联网.ZH_ID = D.ZH_ID") +
           QStringLiteral(" Inner Join 室表 C On D.S_ID = C.S_ID") +
           QStringLiteral(" Inner Join 楼表 B On C.L_ID = B.L_ID") +
           QStringLiteral(" Inner Join 设置管理处 A On A.GYD_DH = B.管理处") +
           QStringLiteral(" where Not 业户互联网.审核人 Is Null And 业户互联网.属性 = '业主'") +
           db::AddressOrder();
}

QString ownerDetailQuery(qint32 ownerId) {
    return QStringLiteral("Select * From 业主表 where ZH_ID=") + QString::number(ownerId);
}

QString memberAccountsQuery(const QString& ownerId) {
    return QStringLiteral("Select *") + QStringLiteral(" From 业户互联网    ") +
           QStringLiteral(" where ZH_ID = ") + ownerId + QStringLiteral(" And 属性 <> '业主'") +
           QStringLiteral(" Order By 姓名");
}

QString terminateBatch(qint32 ownerAccount, const QList<qint32>& memberAccounts) {
    QString batch =
        QStringLiteral("Delete 业户互联网 Where HLWID= ") + QString::number(ownerAccount);
    for (const qint32 member : memberAccounts) {
        batch += QStringLiteral(" Delete 业户互联网 Where HLWID= ") + QString::number(member);
    }
    return batch;
}

}  // namespace qivo::register_sql
