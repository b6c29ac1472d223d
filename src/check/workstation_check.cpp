#include "check/workstation_check.h"

#include <QElapsedTimer>
#include <QTextStream>

#include "check/schema_check.h"
#include "check/server_probes.h"
#include "database/ado.h"
#include "database/engine.h"
#include "database/odbc/odbc_connection_string.h"
#include "runtime/runtime_error.h"
#include "session/connection.h"

namespace qivo::check {
namespace {

const QString kYes = QStringLiteral("✓");
const QString kNo = QStringLiteral("✗");

// Values go in corner brackets so that blanks around them show.
QString shown(const QString& value) {
    return u'「' + value + u'」';
}

void printSettings(QTextStream& out, const ConnectionSettings& settings) {
    const bool embedded = database::isEmbedded(settings.dataSource);
    out << "设置       " << settings.location << " [DBConfig]\n";
    out << "服务器     " << shown(settings.dataSource) << '\n';
    out << "数据库     " << shown(settings.catalog) << '\n';
    out << "登录       " << shown(settings.userId) << "，密码"
        << (settings.password.isEmpty() ? "为空" : "已设置（不显示）") << '\n';
    out << "引擎       " << (embedded ? "嵌入式 SQLite" : "SQL Server（ODBC）") << '\n';
    const QString installed = database::installedDrivers().join(QStringLiteral("、"));
    out << "ODBC 驱动  " << (embedded ? QStringLiteral("不使用") : database::odbcDriverName())
        << "（已安装：" << (installed.isEmpty() ? QStringLiteral("无") : installed) << "）\n";
    if (!embedded) {
        // What reaches the driver, the password masked.
        auto parts = database::parseConnectionString(Connection::composeConnectionString(
            settings.userId, QString(), settings.catalog, settings.dataSource));
        if (!settings.password.isEmpty()) {
            parts.insert(QStringLiteral("password"), QStringLiteral("***"));
        }
        out << "连接串     " << database::odbcConnectionString(parts, database::odbcDriverName())
            << '\n';
    }
}

// Every used table: ✓, or ✗ with what is missing. Returns the missing items; complete gets the
// tables that read whole.
QStringList printTables(QTextStream& out, database::AdoConnection& connection,
                        QStringList& complete) {
    QStringList missing;
    out << "表和列\n";
    for (const TableCheck& table : checkTables(connection)) {
        out << "  " << (table.complete() ? kYes : kNo) << ' ' << table.table;
        if (table.complete()) {
            complete << table.table;
        } else if (table.tableMissing) {
            out << "：表无法读取（" << table.message << "）";
            missing << table.table;
        } else if (!table.missingColumns.isEmpty()) {
            out << "：缺少 " << table.missingColumns.join(QStringLiteral("、"));
            missing << table.missingColumns;
        } else {
            out << "：" << table.message;
            missing << table.table;
        }
        out << '\n';
    }
    return missing;
}

void printOwnerKeys(QTextStream& out, database::AdoConnection& connection) {
    out << "业主记录\n";
    try {
        if (const int orphans = registrationsWithoutOwner(connection); orphans > 0) {
            out << "  ! 警告：" << orphans
                << " 条业主登记（属性 = '业主'）找不到业主记录，审核面板对它们显示\"数据错误\"\n";
        } else {
            out << "  " << kYes << " 每条业主登记都有业主记录\n";
        }
    } catch (const runtime::RuntimeError& error) {
        out << "  ! 警告：无法核对业主记录（" << error.description() << "）\n";
    }
}

}  // namespace

int checkWorkstation(QTextStream& out) {
    const ConnectionSettings settings = readConnectionSettings();
    out << "Qivo账号审核 工作站检查\n";
    printSettings(out, settings);
    out.flush();
    if (settings.dataSource.isEmpty()) {
        out << "连接       " << kNo << " Svr 未设置，未尝试连接\n"
            << connectionSettingsHelp() << '\n';
        out << "结果       " << kNo << " Svr 未设置\n";
        return NoConnection;
    }

    database::AdoConnection connection;
    Connection::prepareConnection(
        connection, Connection::composeConnectionString(settings.userId, settings.password,
                                                        settings.catalog, settings.dataSource));
    QElapsedTimer timer;
    timer.start();
    try {
        connection.Open();
    } catch (const runtime::RuntimeError& error) {
        out << "连接       " << kNo << ' ' << error.description() << '\n';
        out << "结果       " << kNo << " 无法连接数据库（登录时限 " << connection.ConnectionTimeout
            << " 秒）\n";
        return NoConnection;
    }
    out << "连接       " << kYes << " 已连接（" << timer.elapsed() << " 毫秒）\n";

    QStringList complete;
    const QStringList missing = printTables(out, connection, complete);
    if (complete.contains(QStringLiteral("业户互联网")) &&
        complete.contains(QStringLiteral("业主表"))) {
        printOwnerKeys(out, connection);
    }
    const bool probesPass =
        database::isEmbedded(settings.dataSource) || runServerProbes(out, connection);
    if (missing.isEmpty() && probesPass) {
        out << "结果       " << kYes << " 程序使用的每张表和每一列都在\n";
        return AllPresent;
    }
    out << "结果       " << kNo;
    if (!missing.isEmpty()) {
        out << " 缺少 " << missing.size() << " 处：" << missing.join(QStringLiteral("、"));
    }
    if (!probesPass) {
        out << " SQL Server 检查未全部通过";
    }
    out << '\n';
    return SomethingMissing;
}

}  // namespace qivo::check
