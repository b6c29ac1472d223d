#include "register/register_sql.h"

#include "db/address_sql.h"

namespace qivo::register_sql {

QString approvedListQuery() {
    return QStringLiteral("Select 业户互联网.*, GYD_Name As 项目, D.说明, ") + db::DZ() +
           db::RegistrationJoins() +
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

QString terminateBatch(qint32 ownerAccount, const QList<qint32>& memberAccounts,
                       const QString& ownerGuard) {
    QString batch = QStringLiteral("Delete 业户互联网 Where HLWID= ") +
                    QString::number(ownerAccount) + ownerGuard;
    for (const qint32 member : memberAccounts) {
        batch += QStringLiteral(" Delete 业户互联网 Where HLWID= ") + QString::number(member);
    }
    return batch;
}

QString stillApproved() {
    return QStringLiteral(" And 审核人 Is Not Null");
}

}  // namespace qivo::register_sql
