#include "check/server_probes.h"

#include <QSqlDatabase>
#include <QSqlError>
#include <QTextStream>
#include <functional>

#include "database/ado.h"
#include "database/engine.h"
#include "db/schema.h"
#include "owner/owner_sql.h"
#include "register/register_sql.h"
#include "runtime/runtime_error.h"

namespace qivo::check {
namespace {

// A probe returns what it saw; it throws RuntimeError, or returns failed, when it found a fault.
struct Seen {
    bool passed = true;
    QString what;
};

bool runProbe(QTextStream& out, const QString& name, const std::function<Seen()>& probe) {
    Seen seen;
    try {
        seen = probe();
    } catch (const runtime::RuntimeError& error) {
        seen = {false, error.description()};
    }
    out << "  " << (seen.passed ? "✓ " : "✗ ") << name << "：" << seen.what << '\n';
    out.flush();
    return seen.passed;
}

QList<QVariantList> rowsOf(database::AdoConnection& connection, const QString& sql) {
    database::Recordset rs;
    rs.Open(sql, connection);
    QList<QVariantList> rows;
    for (; !rs.Eof(); rs.MoveNext()) {
        QVariantList row;
        for (int i = 0; i < rs.fieldCount(); ++i) {
            row << rs.field(i);
        }
        rows << row;
    }
    return rows;
}

QString tableList() {
    QStringList names;
    for (const db::UsedTable& table : db::usedTables()) {
        names << "N'" + table.name + "'";
    }
    return names.join(u',');
}

Seen secondStatementWhileFirstOpen(database::AdoConnection& connection) {
    database::Recordset first;
    first.Open(QStringLiteral("select HLWID from 业户互联网"), connection);
    database::Recordset second;
    second.Open(QStringLiteral("select count(*) from 业主表"), connection);
    int rows = 0;
    for (; !first.Eof(); first.MoveNext()) {
        ++rows;
    }
    return {true, QStringLiteral("第一个查询读到 %1 行，期间第二个查询得到 %2")
                      .arg(rows)
                      .arg(second.field(0).toString())};
}

Seen chineseTextRoundTrip(database::AdoConnection& connection) {
    const QString pair = QStringLiteral("张三李四");
    const QString longText(3000, QChar(u'长'));
    const QString outsideGbk = QStringLiteral("\u4DAE");
    const QVariantList row =
        rowsOf(connection,
               "select cast(N'" + pair + "' as varchar(8)), cast(N'" + pair +
                   "' as nvarchar(4)), cast(replicate(N'长', 3000) as varchar(8000)), cast(N'" +
                   outsideGbk + "' as nvarchar(2))")
            .value(0);
    QStringList damaged;
    const QStringList names = {"varchar(8) 中文", "nvarchar(4) 中文", "varchar(8000) 3000 字",
                               "nvarchar U+4DAE"};
    const QStringList expected = {pair, pair, longText, outsideGbk};
    for (int i = 0; i < expected.size(); ++i) {
        if (row.value(i).toString() != expected[i]) {
            damaged << QStringLiteral("%1 读回 %2 个字符")
                           .arg(names[i])
                           .arg(row.value(i).toString().size());
        }
    }
    if (!damaged.isEmpty()) {
        return {false, damaged.join(QStringLiteral("；"))};
    }
    return {true, names.join(QStringLiteral("、")) + QStringLiteral(" 读回无损")};
}

// The session speaks the login's own default language unless the driver asked for another. A
// login's default may be given by the language's name (us_english) or by its alias (English).
Seen languageAndDateFormat(database::AdoConnection& connection) {
    const QVariantList row =
        rowsOf(connection,
               QStringLiteral("select @@language, (select dateformat from sys.syslanguages where "
                              "name = @@language), (select default_language_name from "
                              "sys.server_principals where name = suser_sname()), (select alias "
                              "from sys.syslanguages where name = @@language)"))
            .value(0);
    const QString language = row.value(0).toString();
    const QString loginDefault = row.value(2).toString();
    const bool same = loginDefault.compare(language, Qt::CaseInsensitive) == 0 ||
                      loginDefault.compare(row.value(3).toString(), Qt::CaseInsensitive) == 0;
    return {loginDefault.isEmpty() || same,
            QStringLiteral("语言 %1（登录的默认语言 %2），日期格式 %3（程序写日期用 yyyymmdd，"
                           "与之无关）")
                .arg(language, loginDefault.isEmpty() ? QStringLiteral("不详") : loginDefault,
                     row.value(1).toString())};
}

// A batch that fails half-way: afterwards the connection must be in autocommit with no
// transaction open, by the driver's own rollback or by opening it anew.
Seen connectionAfterFailure(database::AdoConnection& connection) {
    const QString before = connection.database().connectionName();
    try {
        connection.Execute(
            QStringLiteral("Delete 业户互联网 Where HLWID= -1 Delete 无此表 Where HLWID= -1"));
        return {false, QStringLiteral("引用不存在的表的批处理没有失败")};
    } catch (const runtime::RuntimeError&) {
    }
    QSqlDatabase db = connection.database();
    const bool reopened = db.connectionName() != before;
    if (connection.engine().settle(db) != database::Engine::Standing::Settled) {
        return {false, QStringLiteral("连接没有回到自动提交，或仍有未结束的事务")};
    }
    return {true, reopened ? QStringLiteral("驱动没能回到自动提交，已重新打开连接")
                           : QStringLiteral("已回到自动提交，没有未结束的事务")};
}

Seen columnTypes(database::AdoConnection& connection) {
    QStringList used;
    for (const db::UsedTable& table : db::usedTables()) {
        for (const QString& column : table.columns) {
            used << (table.name + u'.' + column).toLower();
        }
    }
    QStringList notable;
    int seen = 0;
    for (const QVariantList& row :
         rowsOf(connection,
                "select TABLE_NAME, COLUMN_NAME, DATA_TYPE, CHARACTER_MAXIMUM_LENGTH "
                "from INFORMATION_SCHEMA.COLUMNS where TABLE_NAME in (" +
                    tableList() + ")")) {
        const QString name = row[0].toString() + u'.' + row[1].toString();
        if (!used.contains(name.toLower())) {
            continue;
        }
        ++seen;
        static const QStringList kNotable = {"nvarchar", "nchar",     "ntext",
                                             "date",     "datetime2", "text"};
        const QString type = row[2].toString().toLower();
        if (kNotable.contains(type)) {
            notable << name + u' ' + type +
                           (row[3].isNull() ? QString() : u'(' + row[3].toString() + u')');
        }
    }
    return {true, QStringLiteral("%1 列；需留意的类型：%2")
                      .arg(seen)
                      .arg(notable.isEmpty() ? QStringLiteral("无") : notable.join(u'，'))};
}

Seen identitiesAndTriggers(database::AdoConnection& connection) {
    QStringList what;
    bool passed = true;
    for (const auto& [table, key] :
         {std::pair<QString, QString>{"业主表", "ZH_ID"}, {"ZHZL", "ZL_ID"}}) {
        const QString identity =
            rowsOf(connection,
                   "select name from sys.identity_columns where object_id = object_id(N'" + table +
                       "')")
                .value(0)
                .value(0)
                .toString();
        passed = passed && identity.compare(key, Qt::CaseInsensitive) == 0;
        QStringList triggers;
        for (const QVariantList& row :
             rowsOf(connection, "select name from sys.triggers where parent_id = object_id(N'" +
                                    table + "')")) {
            triggers << row[0].toString();
        }
        what << QStringLiteral("%1 自增列 %2，触发器 %3")
                    .arg(table, identity.isEmpty() ? QStringLiteral("无") : identity,
                         triggers.isEmpty() ? QStringLiteral("无") : triggers.join(u','));
    }
    return {passed, what.join(QStringLiteral("；"))};
}

Seen permissions(database::AdoConnection& connection) {
    QList<std::pair<QString, QString>> needed;
    for (const db::UsedTable& table : db::usedTables()) {
        needed.append({table.name, "SELECT"});
    }
    needed.append({{"业户互联网", "UPDATE"},
                   {"业户互联网", "DELETE"},
                   {"业主表", "INSERT"},
                   {"业主表", "UPDATE"},
                   {"ZHZL", "INSERT"},
                   {"ZHZL", "UPDATE"},
                   {"ZHZL", "DELETE"}});
    QStringList columns;
    for (const auto& [table, permission] : needed) {
        columns << "has_perms_by_name(N'" + table + "', 'OBJECT', '" + permission + "')";
    }
    const QVariantList row = rowsOf(connection, "select " + columns.join(u',')).value(0);
    QStringList lacking;
    for (qsizetype i = 0; i < needed.size(); ++i) {
        if (row.value(i).toInt() != 1) {
            lacking << needed[i].second + u' ' + needed[i].first;
        }
    }
    if (!lacking.isEmpty()) {
        return {false, QStringLiteral("缺少权限：") + lacking.join(u'，')};
    }
    return {true, QStringLiteral("%1 项权限齐全").arg(needed.size())};
}

// The owner screen's saves and the register's termination batch, undone afterwards.
Seen savesRolledBack(database::AdoConnection& connection) {
    QSqlDatabase db = connection.database();
    if (!db.transaction()) {
        database::throwSqlError(db.lastError());
    }
    QString ownerKey;
    QString memberKey;
    QString birthDate;
    try {
        database::Recordset owner;
        owner.Open(owner_sql::newOwnerQuery(), connection, database::adOpenKeyset,
                   database::adLockOptimistic);
        owner.AddNew();
        owner.setField("S_ID", 0);
        owner.setField("姓名", QStringLiteral("工作站检查"));
        owner.setField("说明", QStringLiteral("新进户"));
        owner.setField("短信", 0);
        owner.Update();
        ownerKey = owner.Fields("Zh_id").toString();

        database::Recordset member;
        member.Open(owner_sql::newMemberQuery(), connection, database::adOpenKeyset,
                    database::adLockOptimistic);
        member.AddNew();
        member.setField("Zh_id", ownerKey);
        member.setField("ZL_xm", QStringLiteral("检查"));
        member.setField("ZL_xb", QStringLiteral(""));
        member.setField("ZL_csrq", QStringLiteral("2024-03-05"));  // as typed on the owner screen
        member.Update();
        memberKey = member.Fields("ZL_ID").toString();
        birthDate = database::fieldText(member.Fields("ZL_csrq"));

        database::Recordset edit;
        edit.Open(owner_sql::memberQuery(memberKey), connection, database::adOpenKeyset,
                  database::adLockOptimistic);
        edit.setField("ZL_xm", QVariant());
        edit.Update();

        // Keys no registration has: the batch runs and removes nothing. Inside this transaction
        // it joins it, so the rollback below undoes it too.
        connection.Execute(register_sql::terminateBatch(-1, {-2}));
    } catch (...) {
        db.rollback();
        throw;
    }
    if (!db.rollback()) {
        database::throwSqlError(db.lastError());
    }
    if (ownerKey.isEmpty() || memberKey.isEmpty()) {
        return {
            false,
            QStringLiteral("保存后没有读回新键（ZH_ID=%1，ZL_ID=%2）").arg(ownerKey, memberKey)};
    }
    if (birthDate != u"2024-03-05") {
        return {false, QStringLiteral("键入的出生日期 2024-03-05 存为「%1」").arg(birthDate)};
    }
    const QVariantList left =
        rowsOf(connection, "select (select count(*) from 业主表 where ZH_ID=" + ownerKey +
                               "), (select count(*) from ZHZL where ZL_ID=" + memberKey + ")")
            .value(0);
    if (left.value(0).toInt() + left.value(1).toInt() != 0) {
        return {false, QStringLiteral("回滚后仍留下业主 %1 行、成员 %2 行（ZH_ID=%3、ZL_ID=%4），"
                                      "请手工删除")
                           .arg(left.value(0).toInt())
                           .arg(left.value(1).toInt())
                           .arg(ownerKey, memberKey)};
    }
    return {true, QStringLiteral("新业主 ZH_ID=%1、成员 ZL_ID=%2 已保存、修改，终止批处理已执行，"
                                 "全部回滚")
                      .arg(ownerKey, memberKey)};
}

}  // namespace

bool runServerProbes(QTextStream& out, database::AdoConnection& connection) {
    out << "SQL Server\n";
    bool passed = true;
    const std::pair<const char*, Seen (*)(database::AdoConnection&)> probes[] = {
        {"未读完的记录集旁再查询", secondStatementWhileFirstOpen},
        {"中文往返", chineseTextRoundTrip},
        {"登录语言和日期格式", languageAndDateFormat},
        {"失败命令后的连接", connectionAfterFailure},
        {"列类型", columnTypes},
        {"自增列和触发器", identitiesAndTriggers},
        {"权限", permissions},
        {"保存与终止（回滚）", savesRolledBack},
    };
    for (const auto& [name, probe] : probes) {
        passed =
            runProbe(out, QString::fromUtf8(name), [&] { return probe(connection); }) && passed;
    }
    return passed;
}

}  // namespace qivo::check
