#pragma once

#include <QSqlDriver>
#include <QSqlError>

namespace qivo::database {

// The SQL Server connection under the program's QSqlDatabase, opened through the ODBC API with
// nothing sent but the login: Qt's own ODBC driver runs a SET of its own at every open, as a
// server cursor, and the program's statements are to be the only ones the server sees. Those go
// to handle() directly (odbc_statement.h); Qt's query classes are not used on it.
class OdbcDriver final : public QSqlDriver {
  public:
    explicit OdbcDriver(int loginTimeout);
    ~OdbcDriver() override;

    // db is the ODBC connection string, which holds the login.
    bool open(const QString& db, const QString& user, const QString& password, const QString& host,
              int port, const QString& options) override;
    void close() override;
    QVariant handle() const override;
    // Whether the connection string asked the driver for UTF-8 text (FreeTDS's ClientCharset).
    bool textArrivesAsUtf8() const { return utf8Text_; }
    bool hasFeature(DriverFeature feature) const override;
    QSqlResult* createResult() const override;
    bool beginTransaction() override;
    bool commitTransaction() override;
    bool rollbackTransaction() override;

  private:
    bool endTransaction(short completion);
    bool failed(const QString& what, QSqlError::ErrorType type);
    void release();

    int loginTimeout_;
    bool utf8Text_ = false;
    void* environment_ = nullptr;
    void* connection_ = nullptr;
};

}  // namespace qivo::database
