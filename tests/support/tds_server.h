#pragma once

#include <QString>
#include <QStringList>
#include <memory>

namespace qivo::test {

// A stand-in SQL Server on 127.0.0.1 for the ODBC tests and benchmarks. It speaks as much TDS
// 7.3 as FreeTDS's ODBC driver needs for the program's statements, runs each statement on an
// embedded database file through the program's own translation, and declares result columns
// with the SQL Server types of the estate schema (Chinese text in varchar of code page 936 or
// in nvarchar, sized so the test values fill them). Server cursors are refused, so a request
// for one fails the test that made it.
class TdsServer final {
  public:
    explicit TdsServer(const QString& databasePath);
    ~TdsServer();
    TdsServer(const TdsServer&) = delete;
    TdsServer& operator=(const TdsServer&) = delete;

    // The data source the program's settings take: "127.0.0.1,PORT".
    QString dataSource() const;
    // Logins made from now on read dates given as text in day-month order, as a British or
    // German login language does.
    void setDayFirstLogins(bool dayFirst);
    // varchar from now on goes out in this Windows code page (936, 950 or 1252), under a
    // collation of it, as a database or column of that collation sends it.
    void setCodePage(int codePage);
    // Rolling back a transaction keeps what it wrote, as on a connection whose transaction never
    // began.
    void setRollbackKeepsWrites(bool keeps);
    // From now on a request whose text contains `containing` is answered only after ms
    // milliseconds, as a statement another session's lock holds; an attention (the client's
    // cancel) coming first drops it unanswered and unrun, or, where the server reads the cancel
    // late, runs and answers it before acknowledging the cancel. Empty text holds nothing.
    void holdStatements(const QString& containing, int ms, bool cancelReadLate = false);
    // Logins must give this password (while it is empty any is taken); another is refused as
    // SQL Server refuses it (18456).
    void setLoginPassword(const QString& password);
    // The login's own default language, in force when the login packet names none.
    void setDefaultLanguage(const QString& language);
    // What the last login packet carried.
    struct Login {
        QString user;
        QString password;
        QString language;
    };
    Login lastLogin() const;
    // The next request whose text holds fragment is the deadlock victim (1205: the server rolls
    // its transaction back), or runs and loses its connection before any answer, or halfway
    // through its answer.
    enum class Fault { Deadlock, Drop, DropHalfway };
    void failNext(Fault fault, const QString& fragment);
    // Time spent answering requests: running statements and encoding their results.
    qint64 busyNanoseconds() const;
    // The remote procedures called so far, by name.
    QStringList procedureCalls() const;

  private:
    struct State;
    std::unique_ptr<State> state_;
};

// Makes FreeTDS's ODBC driver known to this process as "FreeTDS", through an odbcinst.ini in
// directory, leaving the system's own registration alone. False when the driver is missing.
bool registerFreeTds(const QString& directory);

}  // namespace qivo::test
