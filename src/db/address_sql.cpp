#include "db/address_sql.h"

namespace qivo::db {

QString DZ() {
    return QStringLiteral(
        "(case when B.[地址1] is not null then B.[地址1] else '' end) +"
        " (case when B.[字1] is not null then B.[字1] else '' end) +"
        " (case when B.[地址2] is not null then B.[地址2] else '' end) +"
        " (case when B.[字2] is not null then B.[字2] else '' end) +"
        " (case when B.[地址3] is not null then B.[地址3] else '' end) +"
        " (case when B.[字3] is not null then B.[字3] else '' end) +"
        " (case when B.[地址4] is not null then B.[地址4] else '' end) +"
        " (case when B.[字4] is not null then B.[字4] else '' end) +"
        " (case when C.[室] is not null then C.[室] else '' end) +"
        " (case when C.[字] is not null then C.[字] else '' end) as DZ ");
}

QString RegistrationJoins() {
    return QStringLiteral(" From 业户互联网 Inner Join 业主表 D On 业户互联网.ZH_ID = D.ZH_ID") +
           QStringLiteral(" Inner Join 室表 C On D.S_ID = C.S_ID") +
           QStringLiteral(" Inner Join 楼表 B On C.L_ID = B.L_ID") +
           QStringLiteral(" Inner Join 设置管理处 A On A.GYD_DH = B.管理处");
}

QString AddressOrder() {
    return QStringLiteral(
        " order by 项目, len(地址1), 地址1, len(地址2), 地址2, len(地址3), 地址3, len(地址4), "
        "地址4, Len(室), 室");
}

}  // namespace qivo::db
