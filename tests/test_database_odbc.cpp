// Record sets and commands on SQL Server, through FreeTDS's ODBC driver to the stand-in server.
#include <QSqlDriver>

#include "database/ado.h"
#include "database/engine.h"
#include "database/odbc/odbc_connection_string.h"
#include "database/odbc/odbc_statement.h"
#include "runtime/runtime_error.h"
#include "session/connection.h"
#include "support/odbc_fixture.h"

using namespace qivo;
using database::Recordset;

namespace {

QString text(const QString& sql) {
    Recordset rs;
    rs.Open(sql, Connection::cn());
    return rs.Eof() ? QStringLiteral("<none>") : database::fieldText(rs.field(0));
}

}  // namespace

class OdbcRecordsTest final : public QObject {
    Q_OBJECT

  private Q_SLOTS:
    void initTestCase() { QVERIFY(test::useFreeTds()); }

    // SQL Server serves one statement at a time per connection: a set whose rows are not all
    // read must not hold it.
    void setsStayOpenSideBySide() {
        test::OdbcFixture odbc([](test::FixtureDb& db) {
            db.exec("insert into 员工档案 (工号, 姓名) values ('1001', '王丽'), ('1002', '李强')");
        });
        Recordset staff;
        staff.Open("select 工号 from 员工档案 order by 工号", Connection::cn());
        Recordset other;
        other.Open("select 姓名 from 员工档案 where 工号 = '1002'", Connection::cn());
        odbc.db.exec("update 员工档案 set 姓名 = '李强强' where 工号 = '1002'");
        QCOMPARE(other.Fields("姓名").toString(), QString("李强"));
        staff.MoveNext();
        QCOMPARE(staff.Fields("工号").toString(), QString("1002"));
        QCOMPARE(text("select 姓名 from 员工档案 where 工号 = '1002'"), QString("李强强"));
    }

    // Text read and written back whole: Chinese filling varchar of code page 936 and nvarchar,
    // a character outside that code page.
    void textTravelsWhole_data() {
        QTest::addColumn<QString>("column");
        QTest::addColumn<QString>("value");
        QTest::newRow("varchar(10) filled") << QString("姓名") << QString("欧阳建国华");
        QTest::newRow("varchar(200) filled") << QString("备注") << test::chineseText(100);
        QTest::newRow("nvarchar(10) filled") << QString("说明") << QString("新进户新进户新进户新");
        QTest::newRow("outside GBK, nvarchar") << QString("说明") << QString::fromUtf8("龚\u4DAE");
        QTest::newRow("empty") << QString("备注") << QString("");
    }
    void textTravelsWhole() {
        QFETCH(QString, column);
        QFETCH(QString, value);
        test::OdbcFixture odbc([&](test::FixtureDb& db) {
            db.exec("insert into 业主表 (ZH_ID, " + column + ") values (1, '" + value + "')");
        });
        const QString select = "Select ZH_ID, " + column + " From 业主表 Where ZH_ID=1";
        QCOMPARE(text("Select " + column + " From 业主表"), value);
        Recordset owner;
        owner.Open(select, Connection::cn(), database::adOpenKeyset, database::adLockOptimistic);
        owner.setField(column, value);
        owner.Update();
        QCOMPARE(owner.Fields(column).toString(), value);
        QVERIFY(!owner.Fields(column).isNull());
        QCOMPARE(odbc.db.count("select len(" + column + ") from 业主表"), value.size());
    }

    // Rows come in blocks and text as UTF-8 (or wide, as Windows drivers give it), the first
    // blocks handed on while the rest arrive: every cell of every block stays in its row, Null
    // stays apart from empty text, Chinese in code page 936, nvarchar outside the BMP and long text
    // arrive exact, through Fields and the grid's bytes.
    void rowsArriveExactInBlocksAndPieces() {
        const int rows = 1500;
        const auto name = [](int i) {
            return i % 3 == 0 ? QVariant()
                              : QVariant(i % 3 == 1 ? QString() : test::chineseText(5));
        };
        const auto note = [](int i) {
            return QString::fromUtf8("龚\u4DAE\U00020000") + QString::number(i);
        };
        const auto moment = [](int i) {
            const QStringList moments{"null", "'2024-03-05'", "'2024-03-06 14:30:05'"};
            return moments[i % 3];
        };
        test::OdbcFixture odbc([&](test::FixtureDb& db) {
            for (int i = 1; i <= rows; ++i) {
                const QVariant n = name(i);
                db.exec(QStringLiteral("insert into 业主表 (ZH_ID, 姓名, 说明, 备注, 进户日期) "
                                       "values (%1, %2, '%3', '%4', %5)")
                            .arg(i)
                            .arg(n.isNull() ? "null" : "'" + n.toString() + "'", note(i),
                                 i == 7 ? test::chineseText(100) : QString(), moment(i)));
            }
        });
        Recordset list;
        list.Open("select ZH_ID, 姓名, 说明, 进户日期 from 业主表 order by ZH_ID",
                  Connection::cn());
        // Another statement while the rows may still be arriving.
        QCOMPARE(text("select count(*) from 业主表"), QString::number(rows));
        for (int i = 1; i <= rows; ++i, list.MoveNext()) {
            QVERIFY(!list.Eof());
            QCOMPARE(list.Fields("ZH_ID").toInt(), i);
            QCOMPARE(list.fieldUtf8("ZH_ID"), std::nullopt);
            QCOMPARE(list.Fields("姓名").isNull(), name(i).isNull());
            QCOMPARE(list.Fields("姓名").toString(), name(i).toString());
            QCOMPARE(list.fieldUtf8("姓名")->toByteArray(), name(i).toString().toUtf8());
            QCOMPARE(QString::fromUtf8(list.fieldUtf8("说明")->toByteArray()), note(i));
            QCOMPARE(list.Fields("说明").toString(), note(i));
            QCOMPARE(QString::fromUtf8(list.fieldUtf8("进户日期")->toByteArray()),
                     database::fieldText(list.Fields("进户日期")));
            const QStringList shown{"", "2024-03-05", "2024-03-06 14:30:05"};
            QCOMPARE(database::fieldText(list.Fields("进户日期")), shown[i % 3]);
        }
        QVERIFY(list.Eof());

        const QString longText = test::chineseText(100).repeated(100);
        void* connection =
            *static_cast<void* const*>(Connection::cn().database().driver()->handle().constData());
        const QStringList queries{
            "select ZH_ID, 姓名, 说明 from 业主表 order by ZH_ID",
            "select ZH_ID, 姓名, replicate(备注, 100) as 长 from 业主表 where ZH_ID in (6, 7, 8)"};
        for (bool utf8 : {true, false}) {
            database::OdbcStatement blocks(connection);
            blocks.execute(queries[0]);
            const database::OdbcRows read = blocks.readAll(utf8);
            QCOMPARE(read.rowCount(), rows);
            QCOMPARE(read.value(rows - 1, 2).toString(), note(rows));
            QCOMPARE(read.value(299, 1).isNull(), true);
            QCOMPARE(read.value(300, 1).toString(), QString(""));
            QVERIFY(!read.value(300, 1).isNull());

            database::OdbcStatement pieces(connection);
            pieces.execute(queries[1]);
            const database::OdbcRows long_ = pieces.readAll(utf8);
            QCOMPARE(long_.rowCount(), 3);
            QCOMPARE(long_.value(0, 1).isNull(), true);
            QCOMPARE(long_.value(0, 2).toString(), QString(""));
            QVERIFY(!long_.value(0, 2).isNull());
            QCOMPARE(long_.value(1, 2).toString(), longText);
            QCOMPARE(QString::fromUtf8(long_.utf8(1, 2)->toByteArray()), longText);
            QCOMPARE(long_.value(2, 0).toInt(), 8);
        }
    }

    // varchar of each code page the estate's servers use reaches the grid exact, read as UTF-8
    // and as wide text, in blocks and in pieces.
    void codePagesArriveExact() {
        test::OdbcFixture odbc;
        void* connection =
            *static_cast<void* const*>(Connection::cn().database().driver()->handle().constData());
        const QList<QPair<int, QString>> texts{
            {936, "欧阳建国，龚"}, {950, "歐陽建國，龔"}, {1252, "Café Noël €ÿ€€€€"}};
        for (const auto& [codePage, value] : texts) {
            odbc.server().setCodePage(codePage);
            odbc.db.exec("delete from 业主表");
            odbc.db.exec("insert into 业主表 (ZH_ID, 备注) values (1, '" + value + "')");
            Recordset owner;
            owner.Open("select 备注 from 业主表", Connection::cn());
            QCOMPARE(QString::fromUtf8(owner.fieldUtf8("备注")->toByteArray()), value);
            for (bool utf8 : {true, false}) {
                database::OdbcStatement statement(connection);
                statement.execute("select 备注, replicate(备注, 500) as 长 from 业主表");
                const database::OdbcRows rows = statement.readAll(utf8);
                QCOMPARE(rows.value(0, 0).toString(), value);
                QCOMPARE(rows.value(0, 1).toString(), value.repeated(500));
            }
        }
    }

    // A new row's key comes back from its own insert; empty text, Null and typed dates reach
    // their columns as written, whatever date order the login reads.
    void savesKeepKeyTextsNullsAndDates() {
        test::OdbcFixture odbc;
        odbc.server().setDayFirstLogins(true);
        odbc.reconnect();
        const qsizetype callsBefore = odbc.server().procedureCalls().size();
        Recordset owner;
        owner.Open(
            "Select ZH_ID, S_ID, 姓名, 进户日期, 收楼日期, 备注, 移动电话, 短信, 说明 "
            "From 业主表 Where ZH_ID=0",
            Connection::cn(), database::adOpenKeyset, database::adLockOptimistic);
        owner.AddNew();
        owner.setField("S_ID", "7");
        owner.setField("姓名", "");
        owner.setField("移动电话", QVariant());
        owner.setField("进户日期", "2024-03-05");
        owner.setField("收楼日期", QVariant());
        owner.setField("短信", 1);
        owner.setField("说明", "新进户");
        owner.Update();
        const int key = owner.Fields("Zh_id").toInt();
        QVERIFY(key > 0);
        QCOMPARE(odbc.db.count("select count(*) from 业主表"), 1);
        QCOMPARE(database::fieldText(owner.Fields("进户日期")), QString("2024-03-05"));
        QVERIFY(!owner.Fields("姓名").isNull());
        QVERIFY(owner.Fields("移动电话").isNull());
        QVERIFY(owner.Fields("收楼日期").isNull());
        QCOMPARE(owner.Fields("S_ID").toInt(), 7);

        Recordset edit;
        edit.Open("Select ZH_ID, 姓名, 进户日期, 收楼日期 From 业主表 Where ZH_ID=" +
                      QString::number(key),
                  Connection::cn(), database::adOpenKeyset, database::adLockOptimistic);
        edit.setField("姓名", "欧阳建国");
        edit.setField("进户日期", "2024/3/6 14:30");
        edit.Update();
        QCOMPARE(text("select 进户日期 from 业主表"), QString("2024-03-06 14:30:00"));
        QCOMPARE(text("select 姓名 from 业主表"), QString("欧阳建国"));
        // Text that is no date goes out as typed, and the server refuses it.
        edit.setField("进户日期", "2024-02-30");
        QCOMPARE(test::errorOf([&] { edit.Update(); }).number(), -2147217913L);
        QCOMPARE(text("select 进户日期 from 业主表"), QString("2024-03-06 14:30:00"));

        Recordset member;
        member.Open("Select ZL_ID, ZH_ID, ZL_xm, ZL_xb, ZL_csrq, ZL_bz From ZHZL Where ZL_ID=0",
                    Connection::cn(), database::adOpenKeyset, database::adLockOptimistic);
        member.AddNew();
        member.setField("Zh_id", QString::number(key));
        member.setField("ZL_xb", "");
        member.setField("ZL_csrq", "20100102");
        member.setField("ZL_bz", QVariant());
        member.Update();
        QVERIFY(member.Fields("ZL_ID").toInt() > 0);
        QCOMPARE(database::fieldText(member.Fields("ZL_csrq")), QString("2010-01-02"));
        QCOMPARE(odbc.db.count("select count(*) from ZHZL where ZL_xb = '' and ZL_bz is null"), 1);
        // No statement asked for a server cursor.
        QCOMPARE(odbc.server().procedureCalls().mid(callsBefore).filter("cursor"), QStringList());
    }

    // Server errors keep SQL Server's number; the connection stays usable after each.
    void errorsCarryServerNumbers_data() {
        QTest::addColumn<QString>("command");
        QTest::addColumn<long>("number");
        QTest::newRow("object") << "select * from 无此表" << 208L;
        QTest::newRow("column") << "select 无此列 from ZHZL" << 207L;
        QTest::newRow("date") << "Update 业户互联网 Set 审核日期 ='yesterday'" << -2147217913L;
        QTest::newRow("batch, third refused")
            << "Delete 业户互联网 Where HLWID= 1 Delete 业户互联网 Where HLWID= 2 "
               "Delete 业户互联网 Where HLWID= 3"
            << runtime::err::ProviderError;
    }
    void errorsCarryServerNumbers() {
        QFETCH(QString, command);
        QFETCH(long, number);
        test::OdbcFixture odbc([](test::FixtureDb& db) {
            db.exec("insert into 业户互联网 (HLWID, 姓名) values (1, '甲'), (2, '乙'), (3, '丙')");
            db.exec(
                "create trigger refuse before delete on 业户互联网 when old.HLWID = 3"
                " begin select raise(abort, 'refused'); end");
        });
        const runtime::RuntimeError error = test::errorOf([&] { odbc.db.exec(command); });
        QCOMPARE(error.number(), number);
        QVERIFY(!error.description().isEmpty());
        QCOMPARE(odbc.db.count("select count(*) from 业户互联网"), 3);
        odbc.db.exec("Delete 业户互联网 Where HLWID= 1 Delete 业户互联网 Where HLWID= 2");
        QCOMPARE(odbc.db.count("select count(*) from 业户互联网"), 1);
    }

    // A batch whose transaction the server ended itself (the deadlock victim) leaves the
    // connection in autocommit with no transaction open, though the driver's own rollback is
    // refused: the next batch is again all or nothing, and one that runs reports no error.
    void batchesStayTransactionsAfterTheServerEndsOne() {
        test::OdbcFixture odbc([](test::FixtureDb& db) {
            db.exec("insert into 业户互联网 (HLWID) values (1), (2), (3), (4)");
            db.exec(
                "create trigger refuse before delete on 业户互联网 when old.HLWID = 4"
                " begin select raise(abort, 'refused'); end");
        });
        const QString two = "Delete 业户互联网 Where HLWID= 1 Delete 业户互联网 Where HLWID= ";
        odbc.server().failNext(test::TdsServer::Fault::Deadlock, "HLWID= 2");
        QVERIFY_THROWS_EXCEPTION(runtime::RuntimeError, odbc.db.exec(two + "2"));
        QVERIFY_THROWS_EXCEPTION(runtime::RuntimeError, odbc.db.exec(two + "4"));
        QCOMPARE(odbc.db.count("select count(*) from 业户互联网"), 4);
        odbc.db.exec(two + "2");
        QCOMPARE(odbc.db.count("select count(*) from 业户互联网"), 2);
    }

    // Whatever the password holds reaches the server as the settings hold it, and the login
    // asks for no language, so the login's own default is in force.
    void passwordsAndLanguageReachTheServer_data() {
        QTest::addColumn<QString>("password");
        for (const char* password : {"p}w", "}", "{p", "{p}", "p}}w", "p;w", "p=w", "'pw'", "p\"w",
                                     "  p w  ", "密码}；"}) {
            QTest::newRow(password) << QString::fromUtf8(password);
        }
    }
    void passwordsAndLanguageReachTheServer() {
        QFETCH(QString, password);
        test::OdbcFixture odbc;
        odbc.server().setLoginPassword(password);
        odbc.server().setDefaultLanguage("简体中文");
        test::MsgBoxRecorder boxes;
        QString user = "sa", catalog = "qivo", source = odbc.server().dataSource();
        QString typed = password;
        QVERIFY(Connection::OpenConnection(user, typed, catalog, source));
        QCOMPARE(odbc.server().lastLogin().password, password);
        QCOMPARE(odbc.server().lastLogin().language, QString());
        QCOMPARE(text("select @@language"), QString("简体中文"));
        typed = password + "x";
        QVERIFY(!Connection::OpenConnection(user, typed, catalog, source));
    }

    // Settings values through the program's ADO connection string to the ODBC driver, whole.
    void connectionStringsReachTheDriver_data() {
        QTest::addColumn<QString>("server");
        QTest::addColumn<QString>("password");
        QTest::addColumn<QString>("driver");
        QTest::addColumn<QString>("expected");
        const auto row = [](const char* name, const char* server, const char* password,
                            const char* driver, const QString& expected) {
            QTest::newRow(name) << QString(server) << QString(password) << QString(driver)
                                << expected;
        };
        const QString rest = "DATABASE=物业数据库;UID=qivo;PWD=pw;";
        const QString tds = "TDS_Version=7.3;ClientCharset=UTF-8;Language=;";
        const QString onPort = "DRIVER={FreeTDS};SERVER=dbserver;Port=1433;" + tds + rest;
        row("FreeTDS host,port", "dbserver,1433", "pw", "FreeTDS", onPort);
        row("FreeTDS host alone", "dbserver", "pw", "FreeTDS", onPort);
        row("FreeTDS named instance", "dbserver\\SQLEXPRESS", "pw", "FreeTDS",
            "DRIVER={FreeTDS};SERVER=dbserver\\SQLEXPRESS;" + tds + rest);
        row("FreeTDS instance and port", "10.0.0.5\\INST,1500", "pw", "FreeTDS",
            "DRIVER={FreeTDS};SERVER=10.0.0.5;Port=1500;" + tds + rest);
        row("Microsoft driver keeps host,port", "dbserver,1433", "pw",
            "ODBC Driver 17 for SQL Server",
            "DRIVER={ODBC Driver 17 for SQL Server};SERVER=dbserver,1433;" + rest);
        row("separators, quotes and blanks in the password", "dbserver\\SQLEXPRESS", "p;w=x\"y'}",
            "ODBC Driver 18 for SQL Server",
            "DRIVER={ODBC Driver 18 for SQL Server};SERVER=dbserver\\SQLEXPRESS;"
            "DATABASE=物业数据库;UID=qivo;PWD={p;w=x\"y'}}};TrustServerCertificate=yes;");
        row("outer blanks kept, instance and port as written", "10.0.0.5\\INST,1500", "  a b  ",
            "SQL Server",
            "DRIVER={SQL Server};SERVER=10.0.0.5\\INST,1500;DATABASE=物业数据库;UID=qivo;"
            "PWD={  a b  };");
    }
    void connectionStringsReachTheDriver() {
        QFETCH(QString, server);
        QFETCH(QString, password);
        QFETCH(QString, driver);
        QFETCH(QString, expected);
        // Composed as the shared connection composes it: values in as they stand.
        const QString ado = "Provider=SQLOLEDB.1;Password=" + password +
                            ";Persist Security Info=False;User ID=qivo;Initial Catalog='物业数据库'"
                            ";Data Source='" +
                            server + "'";
        QCOMPARE(database::odbcConnectionString(database::parseConnectionString(ado), driver),
                 expected);
    }

    // The best SQL Server driver installed, whatever else the driver manager lists.
    void driverChosenFromThoseInstalled() {
        const QString msodbc17 = "ODBC Driver 17 for SQL Server";
        const QString msodbc18 = "ODBC Driver 18 for SQL Server";
        QCOMPARE(database::chooseOdbcDriver({"FreeTDS", "SQL Server", msodbc17, msodbc18}),
                 msodbc18);
        QCOMPARE(database::chooseOdbcDriver({"FreeTDS", "SQL Server", msodbc17}), msodbc17);
        QCOMPARE(database::chooseOdbcDriver({"Microsoft Access Driver (*.mdb)", "SQL Server"}),
                 QString("SQL Server"));
        QCOMPARE(database::chooseOdbcDriver({"PostgreSQL Unicode", "FreeTDS"}), QString("FreeTDS"));
#ifdef Q_OS_WIN
        QCOMPARE(database::chooseOdbcDriver({}), QString("SQL Server"));
#else
        QCOMPARE(database::chooseOdbcDriver({}), QString("FreeTDS"));
#endif
    }
};

QIVO_TEST_MAIN(OdbcRecordsTest)
#include "test_database_odbc.moc"
