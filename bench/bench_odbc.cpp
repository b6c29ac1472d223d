// The account lists on SQL Server through FreeTDS's ODBC driver: against the stand-in server on
// 127.0.0.1 and against Babelfish, a real T-SQL engine, holding the same rows. Beside each list,
// the raw floor: the list's own SQL text on the same connection straight through the ODBC API.
#include "bench_odbc.h"

#ifdef _WIN32
#include <windows.h>
#endif
#include <sql.h>
#include <sqlext.h>

#include <QCoreApplication>
#include <QDir>
#include <QProcess>
#include <QSqlDriver>
#include <QTemporaryDir>
#include <cstdio>

#include "bench_util.h"
#include "register/register_form.h"
#include "register/register_sql.h"
#include "review/review_form.h"
#include "review/review_sql.h"
#include "session/connection.h"
#include "support/babelfish_fixture.h"
#include "support/odbc_fixture.h"

namespace qivo::bench {
namespace {

// Rows a fetch for the bound floor.
constexpr SQLULEN kBlockRows = 256;
// A client share is the small difference of two large times: its median takes more runs.
constexpr int kOdbcRuns = 15;

SQLHDBC connectionHandle() {
    const QVariant handle = Connection::cn().database().driver()->handle();
    return *static_cast<SQLHDBC const*>(handle.constData());
}

// SQLExecDirectW, then every row fetched and every column read as text (UTF-8 from FreeTDS),
// cell by cell with SQLGetData or into columns bound for a block of rows; the rows read.
int rawFetch(const QString& sql, bool bound) {
    SQLHSTMT statement = nullptr;
    SQLAllocHandle(SQL_HANDLE_STMT, connectionHandle(), &statement);
    SQLExecDirectW(statement, reinterpret_cast<SQLWCHAR*>(const_cast<QChar*>(sql.constData())),
                   SQLINTEGER(sql.size()));
    SQLSMALLINT columns = 0;
    SQLNumResultCols(statement, &columns);
    int rows = 0;
    if (!bound) {
        char buffer[4096];
        SQLLEN indicator = 0;
        while (SQL_SUCCEEDED(SQLFetch(statement))) {
            for (SQLUSMALLINT c = 1; c <= columns; ++c) {
                while (SQLGetData(statement, c, SQL_C_CHAR, buffer, sizeof buffer, &indicator) ==
                       SQL_SUCCESS_WITH_INFO) {
                }
            }
            ++rows;
        }
    } else {
        std::vector<std::vector<char>> buffers(columns);
        std::vector<std::vector<SQLLEN>> indicators(columns);
        for (SQLSMALLINT c = 0; c < columns; ++c) {
            SQLSMALLINT type = 0, digits = 0, nullable = 0;
            SQLULEN size = 0;
            SQLDescribeColW(statement, SQLUSMALLINT(c + 1), nullptr, 0, nullptr, &type, &size,
                            &digits, &nullable);
            const SQLLEN width = SQLLEN(std::min<SQLULEN>(size, 8000) * 4 + 1);
            buffers[c].resize(width * kBlockRows);
            indicators[c].resize(kBlockRows);
            SQLBindCol(statement, SQLUSMALLINT(c + 1), SQL_C_CHAR, buffers[c].data(), width,
                       indicators[c].data());
        }
        // The connection's environment is ODBC 2, whose block fetch this is.
        SQLSetStmtAttr(statement, SQL_ROWSET_SIZE, reinterpret_cast<SQLPOINTER>(kBlockRows),
                       SQL_IS_UINTEGER);
        SQLULEN fetched = 0;
        std::vector<SQLUSMALLINT> statuses(kBlockRows);
        while (SQL_SUCCEEDED(
            SQLExtendedFetch(statement, SQL_FETCH_NEXT, 0, &fetched, statuses.data()))) {
            rows += int(fetched);
        }
    }
    SQLFreeHandle(SQL_HANDLE_STMT, statement);
    return rows;
}

// Medians of one run's wall time and the server's busy time in it.
struct Timing {
    std::vector<double> wall, server, client;
    void add(double wallMs, double serverMs) {
        wall.push_back(wallMs);
        server.push_back(serverMs);
        client.push_back(wallMs - serverMs);
    }
    static double median(std::vector<double> times) {
        std::sort(times.begin(), times.end());
        return times[times.size() / 2];
    }
};

// A list and its two raw floors, run in turn (list, SQLGetData, bound) after a warm-up of each;
// serverMs, when given, is the server's busy time so far, and the ratio is of the client shares
// (wall time less the server's), otherwise of the wall times.
void benchList(const QString& what, const QString& where, int n, const QString& sql,
               const std::function<void()>& load, const std::function<int()>& listed,
               const std::function<double()>& serverMs) {
    int rows = 0;
    const std::vector<std::function<void()>> bodies{load, [&] { rows = rawFetch(sql, false); },
                                                    [&] { rows = rawFetch(sql, true); }};
    std::vector<Timing> timings(bodies.size());
    for (int run = -1; run < kOdbcRuns; ++run) {
        for (std::size_t b = 0; b < bodies.size(); ++b) {
            const double before = serverMs ? serverMs() : 0;
            QElapsedTimer timer;
            timer.start();
            bodies[b]();
            const double wall = double(timer.nsecsElapsed()) / 1e6;
            if (run >= 0) {
                timings[b].add(wall, serverMs ? serverMs() - before : 0);
            }
        }
    }
    const auto share = [&](const Timing& t) {
        return Timing::median(serverMs ? t.client : t.wall);
    };
    const double floor = std::min(share(timings[1]), share(timings[2]));
    const auto note = [&](const Timing& t, const QString& rest) {
        if (!serverMs) {
            return rest;
        }
        return QStringLiteral("server %1, client %2 ms, %3")
            .arg(Timing::median(t.server), 0, 'f', 1)
            .arg(share(t), 0, 'f', 1)
            .arg(rest);
    };
    const QString count = QString::number(n);
    printRow(what + " over ODBC" + where, count, Timing::median(timings[0].wall),
             note(timings[0], QStringLiteral("%1 rows, %2 to the floor%3")
                                  .arg(listed())
                                  .arg(ratio(share(timings[0]), floor))
                                  .arg(serverMs ? QString() : QStringLiteral(" (wall)"))));
    printRow("  raw floor: SQLGetData, every cell", count, Timing::median(timings[1].wall),
             note(timings[1], QStringLiteral("%1 rows").arg(rows)));
    printRow("  raw floor: bound, 256 rows a fetch", count, Timing::median(timings[2].wall),
             note(timings[2], QStringLiteral("%1 rows").arg(rows)));
}

// Both lists on the shared connection.
void benchLists(const QString& where, int n, const std::function<double()>& serverMs) {
    frmQivo账号一览表 accounts;
    accounts.Show();
    frmQivo账号审核 review;
    review.Show();
    benchList(
        "LoadApprovedList", where, n, register_sql::approvedListQuery(),
        [&] { accounts.LoadApprovedList(); }, [&] { return accounts.MSFlexGrid1->Rows() - 1; },
        serverMs);
    benchList(
        "LoadPendingList", where, n, review_sql::pendingListQuery(),
        [&] { review.LoadPendingList(); }, [&] { return review.MSFlexGrid1->Rows() - 1; },
        serverMs);
}

void standIn(const QString& path, int n) {
    test::TdsServer server(path);
    QString user = "sa", password = "secret", catalog = "qivo", source = server.dataSource();
    if (!Connection::OpenConnection(user, password, catalog, source)) {
        std::fprintf(stderr, "qivo-bench: the stand-in server refused the connection\n");
        return;
    }
    benchLists({}, n, [&server] { return static_cast<double>(server.busyNanoseconds()) / 1e6; });
}

// Babelfish in the build folder (its server user must reach the data), the demo rows copied in.
void babelfish(const QString& path, int n) {
    const QString state = QDir(QCoreApplication::applicationDirPath()).filePath("babelfish-bench");
    const QString script = QStringLiteral(QIVO_BABELFISH_SCRIPTS "/babelfish.sh");
    qputenv("QIVO_BABELFISH", state.toLocal8Bit());
    qputenv("QIVO_BABELFISH_SCRIPTS", QIVO_BABELFISH_SCRIPTS);
    if (QProcess::execute(
            "bash", {script, "start", state, QIVO_BABELFISH_BUNDLE,
                     QDir(QCoreApplication::applicationDirPath()).filePath("qivo-tsql"), "--sqlite",
                     path}) != 0) {
        std::printf("ODBC lists on Babelfish skipped: the engine did not start\n");
        return;
    }
    const test::BabelfishServer server;
    if (server.connectProgram()) {
        benchLists(" (Babelfish)", n, {});
    }
    Connection::Cn.reset();
    QProcess::execute("bash", {script, "stop", state});
}

}  // namespace

void benchOdbcLists(const QTemporaryDir& dir) {
    if (!test::useFreeTds()) {
        std::printf("ODBC lists skipped: FreeTDS's ODBC driver is not installed\n");
        return;
    }
    for (int n : {1000, 10000, 100000}) {
        const QString path = dir.filePath(QStringLiteral("odbc-%1.db").arg(n));
        const QString demo = QDir(QCoreApplication::applicationDirPath()).filePath("qivo-demo-db");
        if (QProcess::execute(
                demo, {"--rows", QString::number(n), "--out", path, "--no-settings"}) != 0) {
            std::fprintf(stderr, "qivo-bench: qivo-demo-db failed\n");
            return;
        }
        standIn(path, n);
        babelfish(path, n);
    }
}

}  // namespace qivo::bench
