// The demo database: the same for the same size, and every demo sign-in works as the README says.
#include "database/ado.h"
#include "db/demo_data.h"
#include "session/connection.h"
#include "session/login_sql.h"
#include "support/test_support.h"

using namespace qivo;

namespace {

QStringList rows(const QString& sql) {
    database::Recordset rs;
    rs.Open(sql, Connection::cn());
    QStringList result;
    for (; !rs.Eof(); rs.MoveNext()) {
        QStringList fields;
        for (int i = 0; i < rs.fieldCount(); ++i) {
            fields << database::fieldText(rs.field(i));
        }
        result << fields.join(u'|');
    }
    return result;
}

}  // namespace

class DemoTest final : public QObject {
    Q_OBJECT

  private Q_SLOTS:
    void sameForTheSameSizeWithEveryState() {
        QStringList first;
        for (int run = 0; run < 2; ++run) {
            test::FixtureDb db;
            db::writeDemoData(*Connection::Cn, 300);
            const QStringList all = rows("select * from 业户互联网 order by HLWID");
            QCOMPARE(all.size(), 300);
            QCOMPARE(all, run == 0 ? all : first);
            first = all;
            const auto count = [&db](const QString& table, const QString& where) {
                return db.count("select count(*) from " + table + " where " + where);
            };
            QVERIFY(count("业户互联网", "审核人 is null and 属性 = '业主'") > 30);
            QVERIFY(count("业户互联网", "审核人 is not null and 属性 <> '业主'") > 0);
            QCOMPARE(count("业户互联网", "ZH_ID not in (select ZH_ID from 业主表)"), 1);
            QCOMPARE(count("室表", "L_ID = 1 and 室 in ('99', '101', '1001')"), 3);
            QVERIFY(count("业主表", "说明 is null") > 0);
            QVERIFY(count("楼表", "地址2 is null") > 0);
        }
    }

    void demoSignInsJoinThroughThePostQuery() {
        test::FixtureDb db;
        db::writeDemoData(*Connection::Cn, 50);
        const QList<QPair<QString, int>> posts = {
            {"1001", 1}, {"1002", 2}, {"1003", 0}, {"1004", 0}};
        for (const auto& [user, count] : posts) {
            QCOMPARE(rows(StaffQuery(user, user)).size(), 1);
            QCOMPARE(rows(PostQuery(user)).size(), count);
        }
    }
};

QIVO_TEST_MAIN(DemoTest)
#include "test_db_demo.moc"
