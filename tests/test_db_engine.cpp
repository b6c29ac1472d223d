// The two engines behind AdoConnection/Recordset, driven through the shared connection the way
// the screens use them.
#include <QElapsedTimer>
#include <QFile>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTcpServer>
#include <QTcpSocket>
#include <QThread>

#include "db/address_sql.h"
#include "platform/ado.h"
#include "platform/runtime_error.h"
#include "platform/sql_text.h"
#include "session/connection.h"
#include "support/test_support.h"

using namespace qivo;
using platform::Recordset;

namespace {

QStringList column(const QString& sql, const QString& field) {
    Recordset rs;
    rs.Open(sql, Connection::cn());
    QStringList values;
    for (; !rs.Eof(); rs.MoveNext()) {
        values << platform::fieldText(rs.Fields(field));
    }
    return values;
}

void seedAddresses(test::FixtureDb& db) {
    db.exec(
        "insert into 设置管理处 (GYD_DH, GYD_Name) values ('A', '翠湖花园'), ('B', '金桂苑');"
        "insert into 楼表 (L_ID, 管理处, 地址1, 字1, 地址2, 字2) values"
        " (1, 'A', '3', '栋', '2', '单元'), (2, 'A', '10', '栋', null, null),"
        " (3, 'B', '1', '栋', null, null);"
        "insert into 室表 (S_ID, L_ID, 室, 字) values (1, 1, '1001', '室'), (2, 1, '99', '室'),"
        " (3, 1, '101', null), (4, 2, '1', '室'), (5, 3, '1', '室');"
        "insert into 业主表 (ZH_ID, S_ID, 姓名) values (1, 1, '甲'), (2, 2, '乙'), (3, 3, '丙'),"
        " (4, 4, '丁'), (5, 5, '戊');"
        "insert into 业户互联网 (ZH_ID, 属性) values (1, '业主'), (2, '业主'), (3, '业主'),"
        " (4, '业主'), (5, '业主'), (99, '业主')");
}

QString addressQuery() {
    return "Select 业户互联网.*, GYD_Name As 项目, " + db::DZ() +
           " From 业户互联网 Inner Join 业主表 D On 业户互联网.ZH_ID = D.ZH_ID"
           " Inner Join 室表 C On D.S_ID = C.S_ID Inner Join 楼表 B On C.L_ID = B.L_ID"
           " Inner Join 设置管理处 A On A.GYD_DH = B.管理处"
           " where 业户互联网.审核人 Is Null And 业户互联网.属性 = '业主' " +
           db::AddressOrder();
}

}  // namespace

class EngineTest final : public QObject {
    Q_OBJECT

  private Q_SLOTS:
    void connectionStringAndFailures_data() {
        QTest::addColumn<QString>("source");
        QTest::addColumn<QString>("user");
        QTest::addColumn<QString>("expected");
        QTest::newRow("all empty")
            << ""
            << ""
            << "Provider=SQLOLEDB.1;Password=;Persist Security Info=False;User ID=;"
               "Initial Catalog='';Data Source=''";
        QTest::newRow("missing embedded file")
            << "sqlite:/nonexistent/qivo.db"
            << "sa"
            << "Provider=SQLOLEDB.1;Password=;Persist Security Info=False;User ID=sa;"
               "Initial Catalog='';Data Source='sqlite:/nonexistent/qivo.db'";
        QTest::newRow("sql server that drops the connection")
            << "127.0.0.1,DROP"
            << "sa"
            << "Provider=SQLOLEDB.1;Password=;Persist Security Info=False;User ID=sa;"
               "Initial Catalog='';Data Source='127.0.0.1,DROP'";
        QTest::newRow("sql server on a closed port")
            << "127.0.0.1,1"
            << "sa"
            << "Provider=SQLOLEDB.1;Password=;Persist Security Info=False;User ID=sa;"
               "Initial Catalog='';Data Source='127.0.0.1,1'";
    }
    void connectionStringAndFailures() {
        QFETCH(QString, source);
        QFETCH(QString, user);
        QFETCH(QString, expected);
        // A listener on its own thread that accepts every connection and closes it at once.
        QThread listener;
        QTcpServer server;
        if (source.endsWith("DROP")) {
            QVERIFY(server.listen(QHostAddress::LocalHost));
            source.replace("DROP", QString::number(server.serverPort()));
            expected.replace("DROP", QString::number(server.serverPort()));
            QObject::connect(&server, &QTcpServer::newConnection, &server, [&server] {
                while (QTcpSocket* socket = server.nextPendingConnection()) {
                    socket->abort();
                    socket->deleteLater();
                }
            });
            server.moveToThread(&listener);
            listener.start();
        }
        test::MsgBoxRecorder boxes;
        QString password, catalog;
        QElapsedTimer timer;
        timer.start();
        QVERIFY(!Connection::OpenConnection(user, password, catalog, source));
        QVERIFY(timer.elapsed() < 20000);
        QCOMPARE(Connection::ConnectionString, expected);
        QCOMPARE(boxes.messages.size(), 1);
        QVERIFY(boxes.messages[0].prompt.startsWith("错误信息："));
        QVERIFY(boxes.messages[0].prompt.size() > 5);  // the driver's own description follows
        QCOMPARE(boxes.messages[0].title, QString("信息文本"));
        QCOMPARE(boxes.messages[0].style, 64);
        listener.quit();
        listener.wait();
    }

    void addressListOrderAndJoins() {
        test::FixtureDb db;
        seedAddresses(db);
        // Missing owner (99) drops out; Null parts add nothing; rooms sort 99, 101, 1001;
        // building "3" before "10"; estates by name.
        QCOMPARE(
            column(addressQuery(), "dz"),
            QStringList({"3栋2单元99室", "3栋2单元101", "3栋2单元1001室", "10栋1室", "1栋1室"}));
        QCOMPARE(column(addressQuery(), "项目").first(), QString("翠湖花园"));
    }

    void batchesDeleteInOneTransaction() {
        test::FixtureDb db;
        seedAddresses(db);
        db.exec("Delete 业户互联网 Where HLWID= 1");
        QCOMPARE(db.count("select count(*) from 业户互联网"), 5);
        db.exec("Delete 业户互联网 Where HLWID= 2 Delete 业户互联网 Where HLWID= 3");
        QCOMPARE(db.count("select count(*) from 业户互联网"), 3);
        // A failing third statement undoes the two before it.
        db.exec(
            "create trigger refuse before delete on 业户互联网 when old.HLWID = 6"
            " begin select raise(abort, 'refused'); end");
        QVERIFY_THROWS_EXCEPTION(platform::RuntimeError,
                                 db.exec("Delete 业户互联网 Where HLWID= 4 Delete 业户互联网 "
                                         "Where HLWID= 5 Delete 业户互联网 Where HLWID= 6"));
        QCOMPARE(db.count("select count(*) from 业户互联网"), 3);
        // Quoted text is never split or rewritten.
        db.exec("Update 业户互联网 Set 姓名 = 'a + b Delete 业户互联网' Where HLWID= 4");
        QCOMPARE(column("select 姓名 from 业户互联网 where HLWID = 4", "姓名"),
                 QStringList({"a + b Delete 业户互联网"}));
        QVERIFY_THROWS_EXCEPTION(platform::RuntimeError, db.exec("Delect From ZHZL Where ZL_ID=1"));
    }

    void collationAndLen() {
        test::FixtureDb db;
        db.exec(
            "insert into 员工档案 (工号, 姓名) values ('ab', '张三'), ('X1', '阿明'),"
            " ('x2', '王五'), ('y', '李四  ')");
        QCOMPARE(column("select 工号 from 员工档案 where 工号 = 'AB  '", "工号"),
                 QStringList({"ab"}));
        QCOMPARE(column("select 姓名 from 员工档案 where 姓名 = '李四'", "姓名"),
                 QStringList({"李四  "}));
        QCOMPARE(column("select 姓名 from 员工档案 order by 姓名", "姓名"),
                 QStringList({"阿明", "李四  ", "王五", "张三"}));
        QCOMPARE(column("select 工号 from 员工档案 order by 工号", "工号"),
                 QStringList({"ab", "X1", "x2", "y"}));
        QCOMPARE(column("select len('李四  ') as n, Len(null) as m", "n"), QStringList({"2"}));
        QCOMPARE(column("select len('李四  ') as n, Len(null) as m", "m"), QStringList({""}));
    }

    void datesAcceptedAndRefused() {
        test::FixtureDb db;
        db.exec("insert into 业户互联网 (HLWID) values (1)");
        const QStringList accepted = {"2024-03-05", "2024/3/5", "20240305", "2024.03.05 00:00",
                                      "2024-3-5 14:30:00"};
        const QStringList stored = {"2024-03-05", "2024-03-05", "2024-03-05", "2024-03-05",
                                    "2024-03-05 14:30:00"};
        for (int i = 0; i < accepted.size(); ++i) {
            db.exec("Update 业户互联网 Set 审核日期 ='" + accepted[i] + "' Where HLWID = 1");
            QCOMPARE(db.scalar("select 审核日期 from 业户互联网").toString(), stored[i]);
        }
        for (const QString& refused :
             QStringList{"2024-13-40", "05/03/2024", "yesterday", " ", "2024-02-30"}) {
            try {
                db.exec("Update 业户互联网 Set 审核日期 ='" + refused + "' Where HLWID = 1");
                QFAIL(qPrintable("accepted " + refused));
            } catch (const platform::RuntimeError& error) {
                QCOMPARE(error.description(), QString("从字符串转换日期和/或时间时，转换失败。"));
            }
            QCOMPARE(db.scalar("select 审核日期 from 业户互联网").toString(),
                     QString("2024-03-05 14:30:00"));
        }
    }

    // Read sets convert a column when it is first asked for, and remember names between rows;
    // neither may hand back another column or a stale row.
    void readSetFieldsByNameAcrossRows() {
        test::FixtureDb db;
        db.exec(
            "insert into 业主表 (ZH_ID, 姓名, 短信, 说明) values (1, '甲', 1, null), "
            "(2, '乙', 0, '新进户')");
        Recordset rs;
        rs.Open("Select ZH_ID, 姓名, 短信, 说明 From 业主表 Order By ZH_ID", Connection::cn());
        QStringList seen;
        for (; !rs.Eof(); rs.MoveNext()) {
            const QString name = QStringLiteral("说明");
            seen << platform::fieldText(rs.Fields(name))
                 << rs.Fields(QString("姓") + "名").toString() << rs.Fields("zh_id").toString()
                 << QString::number(rs.Fields("短信").toInt());
        }
        QCOMPARE(seen, QStringList({"", "甲", "1", "1", "新进户", "乙", "2", "0"}));
        QVERIFY_THROWS_EXCEPTION(platform::RuntimeError, rs.Fields("姓名"));
        // A failed Open leaves no current record behind, even after one with rows.
        rs.Open("Select ZH_ID, 姓名 From 业主表", Connection::cn());
        QVERIFY_THROWS_EXCEPTION(platform::RuntimeError,
                                 rs.Open("Select nosuch From 业主表", Connection::cn()));
        QVERIFY_THROWS_EXCEPTION(platform::RuntimeError, rs.Fields("姓名"));
        QVERIFY_THROWS_EXCEPTION(platform::RuntimeError, rs.Fields(""));
    }

    void keysetInsertAndUpdate() {
        test::FixtureDb db;
        Recordset rs;
        rs.Open("Select ZH_ID, S_ID, 姓名, 进户日期, 短信,说明 From 业主表 Where ZH_ID=0",
                Connection::cn(), platform::adOpenKeyset, platform::adLockOptimistic);
        QVERIFY(rs.Eof());
        rs.AddNew();
        rs.setField("S_ID", "7");
        rs.setField("姓名", " 王五 ");
        rs.setField("进户日期", "2024/3/5");
        rs.setField("短信", 1);
        rs.Update();
        const int key = rs.Fields("Zh_id").toInt();
        QVERIFY(key > 0);
        QCOMPARE(rs.Fields("进户日期").toString(), QString("2024-03-05"));
        QVERIFY(rs.Fields("说明").isNull());
        QVERIFY_THROWS_EXCEPTION(platform::RuntimeError, rs.Fields("nosuch"));

        Recordset edit;
        edit.Open("Select ZH_ID, 姓名, 进户日期 From 业主表 Where ZH_ID=" + QString::number(key),
                  Connection::cn(), platform::adOpenKeyset, platform::adLockOptimistic);
        edit.setField("姓名", "赵六");
        edit.setField("进户日期", "bad");
        QVERIFY_THROWS_EXCEPTION(platform::RuntimeError, edit.Update());
        QCOMPARE(db.scalar("select 姓名 from 业主表").toString(), QString(" 王五 "));
        edit.setField("进户日期", QVariant());
        edit.Update();
        QCOMPARE(db.scalar("select 姓名 from 业主表").toString(), QString("赵六"));
        QVERIFY(db.scalar("select 进户日期 from 业主表").isNull());
        QCOMPARE(db.count("select 短信 from 业主表"), 1);
    }

    void faultsMidSessionLoseNothing() {
        test::FixtureDb db;
        seedAddresses(db);
        // The file moved away: every statement fails instead of writing into the lost file.
        QVERIFY(QFile::rename(db.path(), db.path() + ".away"));
        QVERIFY_THROWS_EXCEPTION(platform::RuntimeError,
                                 db.exec("Delete 业户互联网 Where HLWID= 1"));
        QVERIFY_THROWS_EXCEPTION(platform::RuntimeError, column(addressQuery(), "dz"));
        QVERIFY(QFile::rename(db.path() + ".away", db.path()));
        QCOMPARE(db.count("select count(*) from 业户互联网"), 6);
        // Another program holds the write lock: the statement fails after the busy wait.
        {
            QSqlDatabase other = QSqlDatabase::addDatabase("QSQLITE", "other");
            other.setDatabaseName(db.path());
            QVERIFY(other.open());
            QSqlQuery lock(other);
            QVERIFY(lock.exec("begin exclusive"));
            QVERIFY_THROWS_EXCEPTION(platform::RuntimeError,
                                     db.exec("Delete 业户互联网 Where HLWID= 1"));
            QVERIFY(lock.exec("rollback"));
            other.close();
        }
        QSqlDatabase::removeDatabase("other");
        db.exec("Delete 业户互联网 Where HLWID= 1");
        QCOMPARE(db.count("select count(*) from 业户互联网"), 5);
    }

    void translationIsExact() {
        QCOMPARE(platform::translateForSqlite("Delete 业户互联网 Where HLWID= 5"),
                 QString("Delete From 业户互联网 Where HLWID= 5"));
        QCOMPARE(platform::translateForSqlite("delete from t where a = '+'"),
                 QString("delete from t where a = '+'"));
        QCOMPARE(platform::translateForSqlite("select (a) + (b), 'x' + 'y', 1 + 2"),
                 QString("select (a) || (b), 'x' || 'y', 1 + 2"));
        QCOMPARE(platform::splitStatements("Delete t Where a= 1 Delete t Where a= 2; select 1"),
                 QStringList({"Delete t Where a= 1", "Delete t Where a= 2", "select 1"}));
    }
};

QIVO_TEST_MAIN(EngineTest)
#include "test_db_engine.moc"
