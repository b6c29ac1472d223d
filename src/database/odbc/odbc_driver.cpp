#include "database/odbc/odbc_driver.h"

#ifdef Q_OS_WIN
#include <windows.h>
#endif

#include <sql.h>
#include <sqlext.h>

#include <QSqlError>
#include <QSqlResult>

namespace qivo::database {
namespace {

// Qt's query classes have nothing to run here: every statement goes through the ODBC API.
class NoResult final : public QSqlResult {
  public:
    explicit NoResult(const QSqlDriver* driver) : QSqlResult(driver) {}

  protected:
    QVariant data(int) override { return {}; }
    bool isNull(int) override { return true; }
    bool reset(const QString&) override { return false; }
    bool fetch(int) override { return false; }
    bool fetchFirst() override { return false; }
    bool fetchLast() override { return false; }
    int size() override { return -1; }
    int numRowsAffected() override { return -1; }
};

QString diagnostics(SQLSMALLINT type, SQLHANDLE handle) {
    QStringList messages;
    SQLWCHAR state[6];
    SQLWCHAR text[2048];
    SQLINTEGER native = 0;
    SQLSMALLINT length = 0;
    for (SQLSMALLINT record = 1; SQL_SUCCEEDED(SQLGetDiagRecW(
             type, handle, record, state, &native, text, SQLSMALLINT(std::size(text)), &length));
         ++record) {
        messages << QString::fromUtf16(reinterpret_cast<const char16_t*>(text),
                                       qMin<qsizetype>(length, std::size(text) - 1));
    }
    return messages.join(u' ');
}

}  // namespace

OdbcDriver::OdbcDriver(int loginTimeout) : loginTimeout_(loginTimeout) {}

OdbcDriver::~OdbcDriver() {
    close();
}

bool OdbcDriver::open(const QString& db, const QString&, const QString&, const QString&, int,
                      const QString&) {
    close();
    // The same ODBC version Qt's driver asks for, so the driver behaves as the program knows it.
    if (!SQL_SUCCEEDED(SQLAllocHandle(SQL_HANDLE_ENV, SQL_NULL_HANDLE, &environment_)) ||
        !SQL_SUCCEEDED(SQLSetEnvAttr(environment_, SQL_ATTR_ODBC_VERSION,
                                     reinterpret_cast<SQLPOINTER>(SQL_OV_ODBC2),
                                     SQL_IS_UINTEGER)) ||
        !SQL_SUCCEEDED(SQLAllocHandle(SQL_HANDLE_DBC, environment_, &connection_))) {
        release();
        setLastError(QSqlError(QStringLiteral("Unable to allocate an ODBC handle"), {},
                               QSqlError::ConnectionError));
        setOpenError(true);
        return false;
    }
    SQLSetConnectAttrW(connection_, SQL_ATTR_LOGIN_TIMEOUT,
                       reinterpret_cast<SQLPOINTER>(SQLULEN(loginTimeout_)), SQL_IS_UINTEGER);
    const SQLRETURN rc = SQLDriverConnectW(
        connection_, nullptr, const_cast<SQLWCHAR*>(reinterpret_cast<const SQLWCHAR*>(db.utf16())),
        SQLSMALLINT(db.size()), nullptr, 0, nullptr, SQL_DRIVER_NOPROMPT);
    if (!SQL_SUCCEEDED(rc)) {
        failed(QStringLiteral("Unable to connect"), QSqlError::ConnectionError);
        release();
        setOpenError(true);
        return false;
    }
    utf8Text_ = db.contains(QLatin1String("ClientCharset=UTF-8"), Qt::CaseInsensitive);
    setOpen(true);
    setOpenError(false);
    return true;
}

void OdbcDriver::close() {
    if (connection_ && isOpen()) {
        SQLDisconnect(connection_);
    }
    release();
    setOpen(false);
}

void OdbcDriver::release() {
    if (connection_) {
        SQLFreeHandle(SQL_HANDLE_DBC, connection_);
        connection_ = nullptr;
    }
    if (environment_) {
        SQLFreeHandle(SQL_HANDLE_ENV, environment_);
        environment_ = nullptr;
    }
}

QVariant OdbcDriver::handle() const {
    return QVariant::fromValue(connection_);
}

bool OdbcDriver::hasFeature(DriverFeature feature) const {
    return feature == Transactions || feature == Unicode;
}

QSqlResult* OdbcDriver::createResult() const {
    return new NoResult(this);
}

bool OdbcDriver::beginTransaction() {
    if (!SQL_SUCCEEDED(SQLSetConnectAttrW(connection_, SQL_ATTR_AUTOCOMMIT,
                                          reinterpret_cast<SQLPOINTER>(SQL_AUTOCOMMIT_OFF),
                                          SQL_IS_UINTEGER))) {
        return failed(QStringLiteral("Unable to begin a transaction"), QSqlError::TransactionError);
    }
    return true;
}

bool OdbcDriver::commitTransaction() {
    return endTransaction(SQL_COMMIT);
}

bool OdbcDriver::rollbackTransaction() {
    return endTransaction(SQL_ROLLBACK);
}

bool OdbcDriver::endTransaction(short completion) {
    if (!SQL_SUCCEEDED(SQLEndTran(SQL_HANDLE_DBC, connection_, completion))) {
        return failed(QStringLiteral("Unable to end the transaction"), QSqlError::TransactionError);
    }
    if (!SQL_SUCCEEDED(SQLSetConnectAttrW(connection_, SQL_ATTR_AUTOCOMMIT,
                                          reinterpret_cast<SQLPOINTER>(SQL_AUTOCOMMIT_ON),
                                          SQL_IS_UINTEGER))) {
        return failed(QStringLiteral("Unable to return to autocommit"),
                      QSqlError::TransactionError);
    }
    return true;
}

bool OdbcDriver::failed(const QString& what, QSqlError::ErrorType type) {
    setLastError(QSqlError(what, diagnostics(SQL_HANDLE_DBC, connection_), type));
    return false;
}

}  // namespace qivo::database
