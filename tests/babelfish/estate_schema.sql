-- The estate database as SQL Server holds it: varchar sized in bytes of the server's code page
-- (936 under chinese_prc_ci_as), nvarchar in characters, dates as datetime, int identity keys.
CREATE DATABASE estate
GO
USE estate
GO
CREATE TABLE 设置管理处 (GYD_DH varchar(50) PRIMARY KEY, GYD_Name varchar(10))
CREATE TABLE 楼表 (
    L_ID int IDENTITY PRIMARY KEY, 管理处 varchar(50),
    地址1 varchar(50), 字1 varchar(50), 地址2 varchar(50), 字2 varchar(50),
    地址3 varchar(50), 字3 varchar(50), 地址4 varchar(50), 字4 varchar(50))
CREATE TABLE 室表 (S_ID int IDENTITY PRIMARY KEY, L_ID int, 室 varchar(50), 字 varchar(50))
CREATE TABLE 业主表 (
    ZH_ID int IDENTITY PRIMARY KEY, S_ID int, 姓名 varchar(10),
    固定电话 varchar(50), 移动电话 varchar(50), 身份证 varchar(50),
    购房日期 datetime, 交房日期 datetime, 收楼日期 datetime, 进户日期 datetime,
    开始收费日期 datetime, 联系方式 varchar(50), 工作单位 varchar(50), 户籍所在地 varchar(50),
    备注 varchar(200), 短信 bit, 说明 nvarchar(10))
CREATE TABLE ZHZL (
    ZL_ID int IDENTITY PRIMARY KEY, ZH_ID int, ZL_xm nvarchar(10), ZL_jtdh varchar(50),
    ZL_gx varchar(50), ZL_xb varchar(50), ZL_csrq datetime, ZL_csd varchar(50), ZL_jg varchar(50),
    ZL_whcd varchar(50), ZL_hy varchar(50), ZL_yddh varchar(50), ZL_sfz varchar(50),
    ZL_fwcs varchar(50), ZL_dh varchar(50), ZL_zj varchar(50), ZL_mz varchar(50),
    ZL_bz varchar(8000))
CREATE TABLE 业户互联网 (
    HLWID int IDENTITY PRIMARY KEY, ZH_ID int, Qivo号 nvarchar(12), 姓名 varchar(10),
    身份证 varchar(50), 手机 varchar(50), 属性 varchar(50), 审核人 varchar(50), 审核日期 datetime)
CREATE TABLE 员工档案 (
    工号 varchar(50) PRIMARY KEY, 帐号密码 varchar(50), 姓名 varchar(10), 离职日期 datetime)
CREATE TABLE 岗位员工new (
    员工代号 varchar(50), 岗位代号 varchar(50), 主要岗位 int, 离岗日期 datetime)
CREATE TABLE 岗位信息new (
    岗位代号 varchar(50) PRIMARY KEY, 岗位名称 varchar(50), 职能部门代号 varchar(50),
    岗位类别代号 varchar(50))
CREATE TABLE 职能部门new (
    职能部门编号 varchar(50) PRIMARY KEY, 职能部门名称 varchar(50), 职能部门类别代号 varchar(50))
CREATE TABLE 岗位类别 (岗位类别编号 varchar(50) PRIMARY KEY, 岗位类别名称 varchar(50))
CREATE TABLE 职能部门类别 (部门类别代号 varchar(50) PRIMARY KEY, 部门类别名称 varchar(50))
GO
CREATE INDEX 业户互联网_ZH_ID ON 业户互联网 (ZH_ID)
CREATE INDEX 业户互联网_审核人 ON 业户互联网 (审核人)
CREATE INDEX 业主表_S_ID ON 业主表 (S_ID)
CREATE INDEX 室表_L_ID ON 室表 (L_ID)
CREATE INDEX ZHZL_ZH_ID ON ZHZL (ZH_ID)
CREATE INDEX 岗位员工new_员工代号 ON 岗位员工new (员工代号)
GO
