-- The suites' rows, written afresh before each case: two estates, buildings and rooms, five
-- owners, staff with posts, and registrations 101 and 102 (pending), 201 (an approved owner)
-- with member accounts 211 and 212 in the same household.
DELETE 设置管理处
DELETE 楼表
DELETE 室表
DELETE 业主表
DELETE ZHZL
DELETE 业户互联网
DELETE 员工档案
DELETE 岗位员工new
DELETE 岗位信息new
DELETE 职能部门new
DELETE 岗位类别
DELETE 职能部门类别
INSERT INTO 设置管理处 (GYD_DH, GYD_Name) VALUES ('A', '翠湖花园'), ('B', '白云小区')
SET IDENTITY_INSERT 楼表 ON
INSERT INTO 楼表 (L_ID, 管理处, 地址1, 字1, 地址2, 字2) VALUES
    (1, 'A', '10', '栋', NULL, NULL), (2, 'A', '2', '栋', NULL, NULL),
    (3, 'B', '1', '号楼', '3', '单元'), (4, 'Z', '9', '栋', NULL, NULL)
SET IDENTITY_INSERT 楼表 OFF
SET IDENTITY_INSERT 室表 ON
INSERT INTO 室表 (S_ID, L_ID, 室, 字) VALUES
    (1, 1, '101', '室'), (2, 2, '1001', NULL), (3, 2, '201', '室'), (4, 3, '5', '室'),
    (5, 4, '1', '室')
SET IDENTITY_INSERT 室表 OFF
SET IDENTITY_INSERT 业主表 ON
INSERT INTO 业主表 (ZH_ID, S_ID, 姓名, 固定电话, 移动电话, 身份证, 购房日期, 收楼日期, 进户日期,
                    开始收费日期, 工作单位, 户籍所在地, 备注, 短信, 说明) VALUES
    (1, 1, '王建国', '0571-1', '13900000001', '330101', '20200102', '20200304', '20200506',
     '20200708', '电机厂', '杭州', '老住户', 1, N'新进户')
INSERT INTO 业主表 (ZH_ID, S_ID, 姓名, 说明) VALUES
    (2, 2, '李娜', NULL), (3, 3, '张伟', N''), (4, 4, '赵六', N'新进户 '), (5, 5, '孙七', N'新进户')
SET IDENTITY_INSERT 业主表 OFF
SET IDENTITY_INSERT ZHZL ON
INSERT INTO ZHZL (ZL_ID, ZH_ID, ZL_xm, ZL_xb, ZL_csrq, ZL_bz) VALUES
    (11, 1, N'张三', '男', '19900102', REPLICATE(CAST('备' AS varchar(8000)), 3000))
SET IDENTITY_INSERT ZHZL OFF
SET IDENTITY_INSERT 业户互联网 ON
INSERT INTO 业户互联网 (HLWID, ZH_ID, Qivo号, 姓名, 身份证, 手机, 属性, 审核人, 审核日期) VALUES
    (101, 1, N'qv䶮101', '欧阳建国', '330101', '13900000001', '业主', NULL, NULL),
    (102, 3, N'qv102', '张伟', NULL, NULL, '业主', NULL, NULL),
    (201, 2, N'qv201', '李娜', '330102', NULL, '业主', '王丽', '20240102'),
    (211, 2, N'qv211', '李四', NULL, NULL, '家属', '王丽', '20240201'),
    (212, 2, N'qv212', '王五', NULL, NULL, '家属', '王丽', '20240201')
SET IDENTITY_INSERT 业户互联网 OFF
INSERT INTO 职能部门类别 VALUES ('C1', '管理部门')
INSERT INTO 职能部门new VALUES ('D1', '客服中心', 'C1'), ('D2', '工程部', 'C1')
INSERT INTO 岗位类别 VALUES ('K1', '管理岗')
INSERT INTO 岗位信息new VALUES ('P1', '客服主管', 'D1', 'K1'), ('P2', '维修员 ', 'D2', 'K1')
INSERT INTO 员工档案 (工号, 帐号密码, 姓名, 离职日期) VALUES
    ('1001', 'pw', ' 王丽 ', NULL), ('1002', 'pw', '李强', NULL), ('1003', 'pw', '赵敏', '20240131'),
    ('1004', 'pw', '孙杰', NULL), ('10''05', 'pw', '周到', NULL)
INSERT INTO 岗位员工new VALUES
    ('1001', 'P1', 1, NULL), ('1002', 'P1', 1, NULL), ('1002', 'P2', 0, NULL),
    ('1003', 'P1', 1, NULL), ('1004', 'P1', 1, '20240501'), ('10''05', 'P2', 1, NULL)
GO
