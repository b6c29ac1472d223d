#include "support/account_fixture.h"

#include "support/test_support.h"

namespace qivo::test {

void writeEstates(FixtureDb& db) {
    db.exec(QStringLiteral(
        "insert into 设置管理处 (GYD_DH, GYD_Name) values ('A', '翠湖花园') "
        "insert into 设置管理处 (GYD_DH, GYD_Name) values ('B', '白云小区') "
        "insert into 楼表 (L_ID, 管理处, 地址1, 字1) values (1, 'A', '10', '栋') "
        "insert into 楼表 (L_ID, 管理处, 地址1, 字1) values (2, 'A', '2', '栋') "
        "insert into 楼表 (L_ID, 管理处, 地址1, 字1, 地址2, 字2) values (3, 'B', '1', '号楼', "
        "'3', '单元') "
        "insert into 楼表 (L_ID, 管理处, 地址1, 字1) values (4, 'Z', '9', '栋') "
        "insert into 室表 (S_ID, L_ID, 室, 字) values (1, 1, '101', '室') "
        "insert into 室表 (S_ID, L_ID, 室) values (2, 2, '1001') "
        "insert into 室表 (S_ID, L_ID, 室, 字) values (3, 2, '201', '室') "
        "insert into 室表 (S_ID, L_ID, 室, 字) values (4, 3, '5', '室') "
        "insert into 室表 (S_ID, L_ID, 室, 字) values (5, 4, '1', '室') "
        "insert into 业主表 (ZH_ID, S_ID, 姓名, 固定电话, 移动电话, 身份证, 购房日期, 收楼日期, "
        "进户日期, 开始收费日期, 工作单位, 户籍所在地, 备注, 说明) values (1, 1, '王建国', "
        "'0571-1', '13900000001', '330101', '2020-01-02', '2020-03-04', '2020-05-06', "
        "'2020-07-08', '电机厂', '杭州', '老住户', '新进户') "
        "insert into 业主表 (ZH_ID, S_ID, 姓名) values (2, 2, '李娜') "
        "insert into 业主表 (ZH_ID, S_ID, 姓名, 说明) values (3, 3, '张伟', '') "
        "insert into 业主表 (ZH_ID, S_ID, 姓名, 说明) values (4, 4, '赵六', '新进户 ') "
        "insert into 业主表 (ZH_ID, S_ID, 姓名, 说明) values (5, 5, '孙七', '新进户')"));
}

void writeStaff(FixtureDb& db) {
    db.exec(
        "insert into 职能部门类别 values ('C1', '管理部门');"
        "insert into 职能部门new values ('D1', '客服中心', 'C1'), ('D2', '工程部', 'C1');"
        "insert into 岗位类别 values ('K1', '管理岗');"
        "insert into 岗位信息new values ('P1', '客服主管', 'D1', 'K1'),"
        " ('P2', '维修员 ', 'D2', 'K1');"
        "insert into 员工档案 (工号, 帐号密码, 姓名, 离职日期) values"
        " ('1001', 'pw', ' 王丽 ', null), ('1002', 'pw', '李强', null),"
        " ('1003', 'pw', '赵敏', '2024-01-31'), ('1004', 'pw', '孙杰', null);"
        "insert into 岗位员工new values ('1001', 'P1', 1, null), ('1002', 'P1', 1, null),"
        " ('1002', 'P2', 0, null), ('1003', 'P1', 1, null), ('1004', 'P1', 1, '2024-05-01')");
}

}  // namespace qivo::test
