// make bench: both account lists against the sqlite3 floor, row opening, approval with reload,
// start-up and peak memory, each the median of repeated runs on demo databases of growing size.
#include <sqlite3.h>

#include <QDir>
#include <QLineEdit>
#include <QProcess>
#include <QTemporaryDir>
#include <cstdio>

#include "bench_odbc.h"
#include "bench_util.h"
#include "database/ado.h"
#include "database/engine.h"
#include "database/sqlite/sqlite_functions.h"
#include "register/register_form.h"
#include "register/register_sql.h"
#include "review/review_form.h"
#include "review/review_sql.h"
#include "session/connection.h"
#include "session/session_values.h"
#include "widgets/error_path.h"
#include "widgets/flex_grid.h"
#include "widgets/grid_find_bar.h"
#include "widgets/msgbox.h"

using namespace qivo;

namespace {

QString tool(const QString& name) {
    return QDir(QCoreApplication::applicationDirPath()).filePath(name);
}

// Writes a demo database with the program's own tool and opens it as the shared connection.
QString openDemo(const QTemporaryDir& dir, int n) {
    const QString path = dir.filePath(QStringLiteral("demo-%1.db").arg(n));
    if (QProcess::execute(tool("qivo-demo-db"),
                          {"--rows", QString::number(n), "--out", path, "--no-settings"}) != 0) {
        std::fprintf(stderr, "qivo-bench: qivo-demo-db failed\n");
        std::exit(1);
    }
    QString user, password, catalog, source = "sqlite:" + path;
    Connection::OpenConnection(user, password, catalog, source);
    return path;
}

// The floor: the same text through the sqlite3 C API with the same functions and collation,
// every column fetched as text.
int rawFetch(const QString& path, const QString& sql) {
    const QString translated = Connection::cn().engine().statements(sql).front();
    sqlite3* handle = nullptr;
    sqlite3_open_v2(path.toUtf8().constData(), &handle, SQLITE_OPEN_READONLY, nullptr);
    database::registerSqliteFunctions(handle);
    sqlite3_stmt* statement = nullptr;
    const QByteArray text = translated.toUtf8();
    sqlite3_prepare_v2(handle, text.constData(), static_cast<int>(text.size()), &statement,
                       nullptr);
    int rows = 0;
    const int columns = sqlite3_column_count(statement);
    while (sqlite3_step(statement) == SQLITE_ROW) {
        for (int c = 0; c < columns; ++c) {
            sqlite3_column_text(statement, c);
        }
        ++rows;
    }
    sqlite3_finalize(statement);
    sqlite3_close(handle);
    return rows;
}

void compareWithFloor(const QString& what, const QString& path, int n, const QString& sql,
                      const std::function<void()>& load, int listedRows) {
    int rows = 0;
    const auto [floor, ours] = bench::medianPairMs([&] { rows = rawFetch(path, sql); }, load);
    const QString count = QString::number(n);
    bench::printRow(what + ": sqlite3 C API floor", count, floor,
                    QStringLiteral("%1 rows").arg(rows));
    bench::printRow(what + ": query + fill + shown", count, ours,
                    bench::ratio(ours, floor) + QStringLiteral(", %1 rows").arg(listedRows));
}

template <class Screen>
void benchOpening(const QString& what, Screen& screen) {
    const int rows = screen.MSFlexGrid1->Rows() - 1;
    int next = 0;
    const double ms = bench::medianMs([&] {
        screen.MSFlexGrid1->setRow(1 + (next++ * 7919) % rows);
        screen.MSFlexGrid1_DblClick();
    });
    bench::printRow(what, QString::number(rows), ms, QStringLiteral("listed rows"));
}

// One keystroke in the find bar: a search of every shown cell of the list, the current row moved.
void benchFindKeystroke(AccountScreen& screen) {
    const QStringList typed{"1", "13", "138", "王", "王丽", "x", "金"};
    qsizetype next = 0;
    screen.FindBar1->openBar();
    const double ms = bench::medianMs(
        [&] { screen.FindBar1->findText()->setText(typed[next++ % typed.size()]); });
    screen.FindBar1->closeBar();
    bench::printRow("find bar: one keystroke over the list",
                    QString::number(screen.MSFlexGrid1->Rows() - 1), ms,
                    QStringLiteral("approved rows"));
}

void benchApproval(frmQivo账号审核& review) {
    const int pending = review.MSFlexGrid1->Rows() - 1;
    const double ms = bench::medianMs([&] {
        review.MSFlexGrid1->setRow(review.MSFlexGrid1->Rows() / 2);
        review.Command3_Click();
    });
    bench::printRow("approve + pending list reload", QString::number(pending), ms,
                    QStringLiteral("pending rows"));
}

void benchGridFill() {
    widgets::FlexGrid grid;
    grid.setFormatString(QStringLiteral("<序 |<a |<b |<c |<d |<e |<f |<g |^h |"));
    // The texts are made once: the line measures the grid, not the formatting of its texts.
    QStringList texts;
    for (int c = 0; c < grid.Cols(); ++c) {
        texts << QStringLiteral("单元格 %1").arg(c);
    }
    const double ms = bench::medianMs([&] {
        grid.hide();
        grid.setRows(1);
        for (int r = 1; r <= 100000; ++r) {
            grid.setRows(r + 1);
            grid.setRow(r);
            grid.setRowData(r, r);
            for (int c = 0; c < grid.Cols(); ++c) {
                grid.setTextMatrix(r, c, texts[c]);
            }
            grid.setCol(8);
            grid.setCellForeColor(kBlue);
        }
        grid.show();
    });
    bench::printRow("FlexGrid: fill 100 000 rows x 10 cols, hidden", "100000", ms);
}

// The record set alone, without a grid, against the same floor.
void benchRecordset(const QString& path, int n) {
    const QString sql = register_sql::approvedListQuery();
    const auto [floor, ours] = bench::medianPairMs(
        [&] { rawFetch(path, sql); },
        [&] {
            database::Recordset record;
            record.Open(sql, Connection::cn());
            for (; !record.Eof(); record.MoveNext()) {
                for (const QString& name : {QStringLiteral("HLWID"), QStringLiteral("dz")}) {
                    record.Fields(name);
                }
            }
        });
    bench::printRow("approved rows through Recordset (2 fields)", QString::number(n), ours,
                    bench::ratio(ours, floor) + QStringLiteral(" to the floor"));
}

void benchStartUp() {
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("QIVO_QUIT_WHEN_SHOWN", "1");
    const double ms = bench::medianMs([&] {
        QProcess program;
        program.setProcessEnvironment(environment);
        program.start(tool("qivo-review"), {});
        program.waitForFinished(30000);
    });
    bench::printRow("process start to sign-in window shown", "", ms);
}

}  // namespace

int main(int argc, char** argv) {
    widgets::Application app(argc, argv);
    widgets::setMsgBoxResponder([](const widgets::MsgBoxRequest&) { return widgets::vbYes; });
    CurrentUserName = QStringLiteral("王丽");
    QTemporaryDir dir;
    std::printf("| %-44s | %7s | %10s | %-30s |\n", "what", "N", "median ms", "note");
    std::printf("|%s|%s|%s|%s|\n", "----------------------------------------------", "---------",
                "------------", "--------------------------------");
    for (int n : {1000, 10000, 100000}) {
        const QString path = openDemo(dir, n);
        frmQivo账号一览表 accounts;
        accounts.Show();
        frmQivo账号审核 review;
        review.Show();
        compareWithFloor(
            "LoadApprovedList", path, n, register_sql::approvedListQuery(),
            [&] { accounts.LoadApprovedList(); }, accounts.MSFlexGrid1->Rows() - 1);
        if (n == 100000) {
            bench::printRow("peak resident memory (MiB) after that list", "",
                            bench::peakResidentMiB());
        }
        compareWithFloor(
            "LoadPendingList", path, n, review_sql::pendingListQuery(),
            [&] { review.LoadPendingList(); }, review.MSFlexGrid1->Rows() - 1);
        if (n == 100000) {
            benchOpening("open a row: approved-account register", accounts);
            benchFindKeystroke(accounts);
            benchOpening("open a row: review screen", review);
            benchApproval(review);
            benchRecordset(path, n);
        }
    }
    bench::benchOdbcLists(dir);
    benchGridFill();
    benchStartUp();
    return 0;
}
