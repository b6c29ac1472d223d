#include "db/schema.h"

#include <QRegularExpression>
#include <QSqlError>
#include <QSqlQuery>
#include <QStringList>

#include "database/ado.h"
#include "database/engine.h"
#include "database/sqlite/sqlite_engine.h"

namespace qivo::db {
namespace {

// Column types of the embedded schema. A date column keeps ISO text (see the triggers below); a
// flag is 0/1. Text columns have the sizes the estate's SQL Server declares: varchar in bytes of
// code page 936, nvarchar in characters; they compare as the server does and refuse longer text
// as it does.
const QString kKey = QStringLiteral("INTEGER PRIMARY KEY AUTOINCREMENT");
const QString kDate = QStringLiteral("DATE TEXT");
const QString kInt = QStringLiteral("INTEGER");
const QString kText = QStringLiteral("varchar(50)");
const QString kName = QStringLiteral("varchar(10)");
const QString kRemark = QStringLiteral("varchar(200)");

struct Table {
    QString name;
    QList<QPair<QString, QString>> columns;
};

QList<Table> tables() {
    return {
        {"设置管理处", {{"GYD_DH", kText + " PRIMARY KEY"}, {"GYD_Name", kName}}},
        {"楼表",
         {{"L_ID", kKey},
          {"管理处", kText},
          {"地址1", kText},
          {"字1", kText},
          {"地址2", kText},
          {"字2", kText},
          {"地址3", kText},
          {"字3", kText},
          {"地址4", kText},
          {"字4", kText}}},
        {"室表", {{"S_ID", kKey}, {"L_ID", kInt}, {"室", kText}, {"字", kText}}},
        {"业主表",
         {{"ZH_ID", kKey},
          {"S_ID", kInt},
          {"姓名", kName},
          {"固定电话", kText},
          {"移动电话", kText},
          {"身份证", kText},
          {"购房日期", kDate},
          {"交房日期", kDate},
          {"收楼日期", kDate},
          {"进户日期", kDate},
          {"开始收费日期", kDate},
          {"联系方式", kText},
          {"工作单位", kText},
          {"户籍所在地", kText},
          {"备注", kRemark},
          {"短信", kInt},
          {"说明", "nvarchar(10)"}}},
        {"ZHZL",
         {{"ZL_ID", kKey},
          {"ZH_ID", kInt},
          {"ZL_xm", "nvarchar(10)"},
          {"ZL_jtdh", kText},
          {"ZL_gx", kText},
          {"ZL_xb", kText},
          {"ZL_csrq", kDate},
          {"ZL_csd", kText},
          {"ZL_jg", kText},
          {"ZL_whcd", kText},
          {"ZL_hy", kText},
          {"ZL_yddh", kText},
          {"ZL_sfz", kText},
          {"ZL_fwcs", kText},
          {"ZL_dh", kText},
          {"ZL_zj", kText},
          {"ZL_mz", kText},
          {"ZL_bz", "varchar(8000)"}}},
        {"业户互联网",
         {{"HLWID", kKey},
          {"ZH_ID", kInt},
          {"Qivo号", "nvarchar(12)"},
          {"姓名", kName},
          {"身份证", kText},
          {"手机", kText},
          {"属性", kText},
          {"审核人", kText},
          {"审核日期", kDate}}},
        {"员工档案",
         {{"工号", kText + " PRIMARY KEY"},
          {"帐号密码", kText},
          {"姓名", kName},
          {"离职日期", kDate}}},
        {"岗位员工new",
         {{"员工代号", kText}, {"岗位代号", kText}, {"主要岗位", kInt}, {"离岗日期", kDate}}},
        {"岗位信息new",
         {{"岗位代号", kText + " PRIMARY KEY"},
          {"岗位名称", kText},
          {"职能部门代号", kText},
          {"岗位类别代号", kText}}},
        {"职能部门new",
         {{"职能部门编号", kText + " PRIMARY KEY"},
          {"职能部门名称", kText},
          {"职能部门类别代号", kText}}},
        {"岗位类别", {{"岗位类别编号", kText + " PRIMARY KEY"}, {"岗位类别名称", kText}}},
        {"职能部门类别", {{"部门类别代号", kText + " PRIMARY KEY"}, {"部门类别名称", kText}}},
    };
}

// The foreign keys the screens join and filter on, indexed as in the estate database.
const QStringList kIndexes = {
    "create index 业户互联网_ZH_ID on 业户互联网 (ZH_ID)",
    "create index 业户互联网_审核人 on 业户互联网 (审核人)",
    "create index 业主表_S_ID on 业主表 (S_ID)",
    "create index 室表_L_ID on 室表 (L_ID)",
    "create index ZHZL_ZH_ID on ZHZL (ZH_ID)",
    "create index 岗位员工new_员工代号 on 岗位员工new (员工代号)",
};

// A text column's definition: its collation and the check that refuses text longer than it.
QString textColumn(const QString& name, const QString& type) {
    static const QRegularExpression sized(QStringLiteral(R"(^(n?varchar)\((\d+)\))"));
    const QRegularExpressionMatch match = sized.match(type);
    if (!match.hasMatch()) {
        return type;
    }
    return QStringLiteral("%1 COLLATE %2 CHECK (qivo_fits(\"%3\", '%4', %5))%6")
        .arg(match.captured(0), QLatin1String(database::kTextCollation), name, match.captured(1),
             match.captured(2), type.mid(match.capturedLength()));
}

QStringList schemaStatements() {
    QStringList statements;
    for (const Table& table : tables()) {
        QStringList columns;
        QStringList triggers;
        for (const auto& [name, type] : table.columns) {
            columns << QStringLiteral("\"%1\" %2").arg(name, textColumn(name, type));
            if (type != kDate) {
                continue;
            }
            // A date column stores what SQL Server would: any accepted spelling becomes ISO
            // text, anything else fails the statement with the conversion error.
            const QString body = QStringLiteral(
                                     "when new.\"%2\" is not null begin update \"%1\" set \"%2\" = "
                                     "qivo_date(new.\"%2\") where rowid = new.rowid; end")
                                     .arg(table.name, name);
            triggers << QStringLiteral("create trigger \"%1_%2_insert\" after insert on \"%1\" %3")
                            .arg(table.name, name, body)
                     << QStringLiteral(
                            "create trigger \"%1_%2_update\" after update of \"%2\" on \"%1\" %3")
                            .arg(table.name, name, body);
        }
        statements << QStringLiteral("create table \"%1\" (%2)")
                          .arg(table.name, columns.join(QStringLiteral(", ")))
                   << triggers;
    }
    return statements + kIndexes;
}

}  // namespace

QList<UsedTable> usedTables() {
    QList<UsedTable> used;
    for (const Table& table : tables()) {
        QStringList columns;
        for (const auto& column : table.columns) {
            columns << column.first;
        }
        used.append({table.name, columns});
    }
    return used;
}

std::optional<TextCapacity> textCapacity(const QString& table, const QString& column) {
    static const QRegularExpression sized(QStringLiteral(R"(^(n?)varchar\((\d+)\))"));
    for (const Table& known : tables()) {
        if (known.name != table) {
            continue;
        }
        for (const auto& [name, type] : known.columns) {
            const QRegularExpressionMatch match = sized.match(type);
            if (name == column && match.hasMatch()) {
                return TextCapacity{!match.captured(1).isEmpty(), match.captured(2).toInt()};
            }
        }
    }
    return std::nullopt;
}

void createEmbeddedSchema(database::AdoConnection& connection) {
    QSqlDatabase db = connection.database();
    db.transaction();
    QSqlQuery query(db);
    for (const QString& statement : schemaStatements()) {
        if (!query.exec(statement)) {
            const QSqlError error = query.lastError();
            db.rollback();
            database::throwSqlError(error);
        }
    }
    db.commit();
}

}  // namespace qivo::db
