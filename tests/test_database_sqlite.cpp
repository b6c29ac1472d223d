// The two engines behind AdoConnection/Recordset, driven through the shared connection the way
// the screens use them.
#include <QElapsedTimer>
#include <QSqlQuery>
#include <QTcpServer>
#include <QTcpSocket>
#include <QThread>

#include "database/ado.h"
#include "database/sql_text.h"
#include "database/statement_wait.h"
#include "runtime/runtime_error.h"
#include "session/connection.h"
#include "support/test_support.h"

using namespace qivo;
using database::Recordset;

namespace {

QStringList column(const QString& sql, const QString& field) {
    Recordset rs;
    rs.Open(sql, Connection::cn());
    QStringList values;
    for (; !rs.Eof(); rs.MoveNext()) {
        values << database::fieldText(rs.Fields(field));
    }
    return values;
}

}  // namespace

class EngineTest final : public QObject {
    Q_OBJECT

  private Q_SLOTS:
    // Past its first moment a statement shows the wait; a cancel there ends a long query, or a
    // wait for another program's lock, in the cancelled error, and the connection goes on.
    void slowStatementsCanBeCancelled() {
        test::FixtureDb db;
        struct Cancel final : database::StatementWait {
            bool keepAlive(int) override { return true; }
        };
        int waits = 0;
        database::setStatementWaitFactory([&waits] {
            ++waits;
            return std::make_unique<Cancel>();
        });
        QCOMPARE(column("select count(*) as n from 业户互联网", "n"), QStringList{"0"});
        QCOMPARE(waits, 0);
        QElapsedTimer clock;
        clock.start();
        QCOMPARE(test::errorOf([] {
                     column(
                         "with recursive n(i) as (select 1 union all select i + 1 from n "
                         "where i < 300000000) select count(*) as n from n",
                         "n");
                 }).number(),
                 database::kCancelledError);
        {
            QSqlDatabase other = QSqlDatabase::addDatabase("QSQLITE", "other");
            other.setDatabaseName(db.path());
            QVERIFY(other.open());
            QSqlQuery lock(other);
            QVERIFY(lock.exec("begin exclusive"));
            QCOMPARE(test::errorOf([] {
                         Connection::cn().Execute("delete 业户互联网 where HLWID = 1");
                     }).number(),
                     database::kCancelledError);
            lock.exec("rollback");
        }
        QSqlDatabase::removeDatabase("other");
        QVERIFY(clock.elapsed() < 4000);
        QCOMPARE(waits, 2);
        database::setStatementWaitFactory({});
        Connection::cn().Execute("delete 业户互联网 where HLWID = 1");
    }

    void connectionStringAndFailures_data() {
        QTest::addColumn<QString>("source");
        QTest::addColumn<QString>("user");
        QTest::newRow("all empty") << QString() << QString();
        QTest::newRow("missing embedded file") << "sqlite:/nonexistent/qivo.db" << QString("sa");
        QTest::newRow("sql server that drops the connection") << "127.0.0.1,DROP" << QString("sa");
        QTest::newRow("sql server on a closed port") << "127.0.0.1,1" << QString("sa");
    }
    void connectionStringAndFailures() {
        QFETCH(QString, source);
        QFETCH(QString, user);
        // A listener on its own thread that accepts every connection and closes it at once.
        QThread listener;
        QTcpServer server;
        if (source.endsWith("DROP")) {
            QVERIFY(server.listen(QHostAddress::LocalHost));
            source.replace("DROP", QString::number(server.serverPort()));
            QObject::connect(&server, &QTcpServer::newConnection, &server, [&server] {
                while (QTcpSocket* socket = server.nextPendingConnection()) {
                    socket->abort();
                    socket->deleteLater();
                }
            });
            server.moveToThread(&listener);
            listener.start();
        }
        const QString expected =
            "Provider=SQLOLEDB.1;Password=;Persist Security Info=False;User ID=" + user +
            ";Initial Catalog='';Data Source='" + source + "'";
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

    void batchesDeleteInOneTransaction() {
        test::FixtureDb db;
        db.exec("insert into 业户互联网 (ZH_ID) values (1), (2), (3), (4), (5), (6)");
        db.exec("Delete 业户互联网 Where HLWID= 1");
        QCOMPARE(db.count("select count(*) from 业户互联网"), 5);
        db.exec("Delete 业户互联网 Where HLWID= 2 Delete 业户互联网 Where HLWID= 3");
        QCOMPARE(db.count("select count(*) from 业户互联网"), 3);
        // A failing third statement undoes the two before it.
        db.exec(
            "create trigger refuse before delete on 业户互联网 when old.HLWID = 6"
            " begin select raise(abort, 'refused'); end");
        QVERIFY_THROWS_EXCEPTION(runtime::RuntimeError,
                                 db.exec("Delete 业户互联网 Where HLWID= 4 Delete 业户互联网 "
                                         "Where HLWID= 5 Delete 业户互联网 Where HLWID= 6"));
        QCOMPARE(db.count("select count(*) from 业户互联网"), 3);
        // Quoted text is never split or rewritten.
        db.exec("Update 业户互联网 Set 手机 = 'a + b Delete 业户互联网' Where HLWID= 4");
        QCOMPARE(column("select 手机 from 业户互联网 where HLWID = 4", "手机"),
                 QStringList({"a + b Delete 业户互联网"}));
        QVERIFY_THROWS_EXCEPTION(runtime::RuntimeError, db.exec("Delect From ZHZL Where ZL_ID=1"));
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
        QCOMPARE(column("select len('李四  ') as n", "n") + column("select Len(null) as m", "m"),
                 QStringList({"2", ""}));
        // The same order on every system: digits, Chinese by pinyin (〇 is líng), then Latin
        // with case and width ignored and an accented letter after the plain one.
        db.exec(
            "delete from 员工档案; insert into 员工档案 (工号, 姓名) values ('1', 'Ｗu'),"
            " ('2', 'Lü'), ('3', 'lǚ'), ('4', 'lu'), ('5', '吕布'), ('6', '〇号'), ('7', '10号'),"
            " ('8', '2号'), ('9', '李四')");
        QCOMPARE(column("select 姓名 from 员工档案 order by 姓名", "姓名"),
                 QStringList({"10号", "2号", "李四", "〇号", "吕布", "lu", "lǚ", "Lü", "Ｗu"}));
    }

    void datesAcceptedAndRefused() {
        test::FixtureDb db;
        db.exec("insert into 业户互联网 (HLWID) values (1)");
        // What the column holds after each text: a refused one leaves the last date standing.
        QStringList held;
        for (const char* date :
             {"2024-03-05", "2024/3/5", "20240305", "2024.03.05 00:00", "2024-3-5 14:30:00",
              "2024-13-40", "05/03/2024", "yesterday", " ", "2024-02-30"}) {
            const QString refusal =
                test::errorOf([&] {
                    db.exec(
                        QString("Update 业户互联网 Set 审核日期 ='%1' Where HLWID = 1").arg(date));
                }).description();
            held << refusal + db.scalar("select 审核日期 from 业户互联网").toString();
        }
        const QString last = "2024-03-05 14:30:00";
        const QString refused = "从字符串转换日期和/或时间时，转换失败。" + last;
        QCOMPARE(held, QStringList({"2024-03-05", "2024-03-05", "2024-03-05", "2024-03-05", last,
                                    refused, refused, refused, refused, refused}));
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
            seen << database::fieldText(rs.Fields(name))
                 << rs.Fields(QString("姓") + "名").toString() << rs.Fields("zh_id").toString()
                 << QString::number(rs.Fields("短信").toInt());
        }
        QCOMPARE(seen, QStringList({"", "甲", "1", "1", "新进户", "乙", "2", "0"}));
        QVERIFY_THROWS_EXCEPTION(runtime::RuntimeError, rs.Fields("姓名"));
        // A failed Open leaves no current record behind, even after one with rows.
        rs.Open("Select ZH_ID, 姓名 From 业主表", Connection::cn());
        QVERIFY_THROWS_EXCEPTION(runtime::RuntimeError,
                                 rs.Open("Select nosuch From 业主表", Connection::cn()));
        QVERIFY_THROWS_EXCEPTION(runtime::RuntimeError, rs.Fields("姓名"));
        QVERIFY_THROWS_EXCEPTION(runtime::RuntimeError, rs.Fields(""));
    }

    void keysetInsertAndUpdate() {
        test::FixtureDb db;
        Recordset rs;
        rs.Open("Select ZH_ID, S_ID, 姓名, 进户日期, 短信,说明 From 业主表 Where ZH_ID=0",
                Connection::cn(), database::adOpenKeyset, database::adLockOptimistic);
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
        QVERIFY_THROWS_EXCEPTION(runtime::RuntimeError, rs.Fields("nosuch"));

        Recordset edit;
        edit.Open("Select ZH_ID, 姓名, 进户日期 From 业主表 Where ZH_ID=" + QString::number(key),
                  Connection::cn(), database::adOpenKeyset, database::adLockOptimistic);
        edit.setField("姓名", "赵六");
        edit.setField("进户日期", "bad");
        QVERIFY_THROWS_EXCEPTION(runtime::RuntimeError, edit.Update());
        QCOMPARE(db.scalar("select 姓名 from 业主表").toString(), QString(" 王五 "));
        edit.setField("进户日期", QVariant());
        edit.Update();
        QCOMPARE(db.scalar("select 姓名 from 业主表").toString(), QString("赵六"));
        QVERIFY(db.scalar("select 进户日期 from 业主表").isNull());
        QCOMPARE(db.count("select 短信 from 业主表"), 1);
    }

    void translationIsExact() {
        QCOMPARE(database::translateForSqlite("Delete 业户互联网 Where HLWID= 5"),
                 QString("Delete From 业户互联网 Where HLWID= 5"));
        QCOMPARE(database::translateForSqlite("delete from t where a = '+'"),
                 QString("delete from t where a = '+'"));
        QCOMPARE(database::translateForSqlite("select (a) + (b), 'x' + 'y', 1 + 2"),
                 QString("select (a) || (b), 'x' || 'y', 1 + 2"));
        QCOMPARE(database::splitStatements("Delete t Where a= 1 Delete t Where a= 2; select 1"),
                 QStringList({"Delete t Where a= 1", "Delete t Where a= 2", "select 1"}));
    }
};

QIVO_TEST_MAIN(EngineTest)
#include "test_database_sqlite.moc"
