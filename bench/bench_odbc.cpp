// The account lists on SQL Server: FreeTDS's ODBC driver to the stand-in server on 127.0.0.1,
// with the time the server spent running the query and encoding its rows reported beside each.
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
#include "support/odbc_fixture.h"

namespace qivo::bench {
namespace {

void benchList(const QString& what, int n, test::TdsServer& server,
               const std::function<void()>& load, int rows) {
    std::vector<double> serverMs;
    const double ms = medianMs([&] {
        const qint64 before = server.busyNanoseconds();
        load();
        serverMs.push_back(static_cast<double>(server.busyNanoseconds() - before) / 1e6);
    });
    std::sort(serverMs.begin(), serverMs.end());
    printRow(what, QString::number(n), ms,
             QStringLiteral("server %1 ms, %2 rows")
                 .arg(serverMs[serverMs.size() / 2], 0, 'f', 1)
                 .arg(rows));
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
        test::TdsServer server(path);
        QString user = "sa", password = "secret", catalog = "qivo", source = server.dataSource();
        if (!Connection::OpenConnection(user, password, catalog, source)) {
            std::fprintf(stderr, "qivo-bench: the stand-in server refused the connection\n");
            return;
        }
        frmQivo账号一览表 accounts;
        accounts.Show();
        frmQivo账号审核 review;
        review.Show();
        benchList(
            "LoadApprovedList over ODBC", n, server, [&] { accounts.LoadApprovedList(); },
            accounts.MSFlexGrid1->Rows() - 1);
        benchList(
            "LoadPendingList over ODBC", n, server, [&] { review.LoadPendingList(); },
            review.MSFlexGrid1->Rows() - 1);
    }
}

}  // namespace qivo::bench
