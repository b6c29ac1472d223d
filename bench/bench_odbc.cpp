// The account lists on SQL Server through FreeTDS's ODBC driver: against the stand-in server on
// 127.0.0.1, with the time it spent running the query and encoding its rows beside each, and
// against Babelfish, a real T-SQL engine, holding the same rows.
#include "bench_odbc.h"

#include <QCoreApplication>
#include <QDir>
#include <QProcess>
#include <QTemporaryDir>
#include <cstdio>

#include "bench_util.h"
#include "register/register_form.h"
#include "review/review_form.h"
#include "session/connection.h"
#include "support/babelfish_fixture.h"
#include "support/odbc_fixture.h"

namespace qivo::bench {
namespace {

// Both lists on the shared connection; serverMs, when given, is the server's busy time so far.
void benchLists(const QString& where, int n, const std::function<double()>& serverMs) {
    frmQivo账号一览表 accounts;
    accounts.Show();
    frmQivo账号审核 review;
    review.Show();
    const auto bench = [&](const QString& what, const std::function<void()>& load, int rows) {
        std::vector<double> server;
        const double ms = medianMs([&] {
            const double before = serverMs ? serverMs() : 0;
            load();
            server.push_back(serverMs ? serverMs() - before : 0);
        });
        std::sort(server.begin(), server.end());
        const QString note = serverMs ? QStringLiteral("server %1 ms, %2 rows")
                                            .arg(server[server.size() / 2], 0, 'f', 1)
                                            .arg(rows)
                                      : QStringLiteral("%1 rows").arg(rows);
        printRow(what + where, QString::number(n), ms, note);
    };
    bench(
        "LoadApprovedList over ODBC", [&] { accounts.LoadApprovedList(); },
        accounts.MSFlexGrid1->Rows() - 1);
    bench(
        "LoadPendingList over ODBC", [&] { review.LoadPendingList(); },
        review.MSFlexGrid1->Rows() - 1);
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
    for (int n : {1000, 10000}) {
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
