#include "owner/owner_sql.h"

namespace qivo::owner_sql {

namespace {

const QString kOwnerColumnsHead = QStringLiteral(
    "Select ZH_ID, S_ID, 姓名, 进户日期, 开始收费日期, 联系方式, 身份证, 工作单位, 户籍所在地, "
    "购房日期, 交房日期,");

const QString kMemberColumns = QStringLiteral(
    "Select ZL_ID, ZH_ID, ZL_xm, ZL_jtdh, ZL_gx, ZL_xb, ZL_csrq, ZL_csd, ZL_jg, ZL_whcd, ZL_hy, "
    "ZL_yddh, ZL_sfz, ZL_fwcs, ZL_dh, ZL_zj, ZL_mz, ZL_bz ");

}  // namespace

QString ownerQuery(const QString& ownerKey) {
    return kOwnerColumnsHead + "收楼日期, 备注,固定电话,移动电话,短信" + " From 业主表" +
           " Where ZH_ID=" + ownerKey;
}

QString newOwnerQuery() {
    return kOwnerColumnsHead + "收楼日期, 备注,固定电话,移动电话,短信,说明" + " From 业主表" +
           " Where ZH_ID=0";
}

QString membersQuery(const QString& ownerKey) {
    return kMemberColumns + " From ZHZL" + " Where ZH_ID=" + ownerKey;
}

QString newMemberQuery() {
    return QStringLiteral(
               "Select ZL_ID, ZH_ID, ZL_xm, ZL_jtdh, ZL_gx, ZL_xb, ZL_csrq, ZL_csd, ZL_jg, "
               "ZL_whcd,") +
           "ZL_hy, ZL_yddh, ZL_sfz, ZL_fwcs, ZL_dh, ZL_zj, ZL_mz, ZL_bz " + " From ZHZL" +
           " Where ZL_ID=0";
}

QString memberQuery(const QString& memberKey) {
    return kMemberColumns + " From ZHZL" + " Where ZL_ID=" + memberKey;
}

QString deleteMemberStatement(const QString& memberKey) {
    // "Delect" is what the screen has always sent; the database refuses it.
    return "Delect From ZHZL Where ZL_ID=" + memberKey;
}

}  // namespace qivo::owner_sql
