#include "session/login_sql.h"

#include "db/sql_literal.h"

namespace qivo {

QString StaffQuery(const QString& user, const QString& trimmedPassword) {
    return "Select * From 员工档案 Where 工号 ='" + db::sqlText(user) + "' and 帐号密码='" +
           db::sqlText(trimmedPassword) + "'";
}

QString PostQuery(const QString& user) {
    return QStringLiteral(
               "Select 员工档案.姓名,职能部门类别.部门类别代号,职能部门类别.部门类别名称,"
               "岗位类别.岗位类别编号,岗位类别名称,") +
           " 职能部门new.职能部门编号 , 职能部门new.职能部门名称, 岗位信息new.岗位代号, "
           "岗位信息new.岗位名称," +
           " 岗位员工new.主要岗位 From 岗位员工new" +
           " Inner joIn 岗位信息new on 岗位员工new.岗位代号 = 岗位信息new.岗位代号" +
           " Inner joIn 职能部门new on 岗位信息new.职能部门代号 = 职能部门new.职能部门编号" +
           " Inner joIn 岗位类别 on 岗位信息new.岗位类别代号 = 岗位类别.岗位类别编号" +
           " Inner joIn 职能部门类别 on 职能部门new.职能部门类别代号 = 职能部门类别.部门类别代号" +
           " Inner joIn 员工档案 on 岗位员工new.员工代号 = 员工档案.工号" +
           " Where 岗位员工new.员工代号='" + db::sqlText(user) +
           "' and 员工档案.离职日期 is null AND (岗位员工new.离岗日期 IS NULL)";
}

}  // namespace qivo
