#include "support/tsql_client.h"

#ifdef Q_OS_WIN
#include <windows.h>
#endif

#include <sql.h>
#include <sqlext.h>

#include <QRegularExpression>

#include "runtime/runtime_error.h"

namespace qivo::test {
namespace {

const SQLWCHAR* wide(const QString& text) {
    static_assert(sizeof(SQLWCHAR) == sizeof(char16_t));
    return reinterpret_cast<const SQLWCHAR*>(text.utf16());
}

// The first diagnostic record of a handle as the error it ends in.
runtime::RuntimeError diagnostic(SQLSMALLINT type, SQLHANDLE handle) {
    SQLWCHAR state[6] = {};
    SQLWCHAR message[2048] = {};
    SQLINTEGER native = 0;
    SQLSMALLINT length = 0;
    SQLGetDiagRecW(type, handle, 1, state, &native, message, SQLSMALLINT(std::size(message)),
                   &length);
    return {int(native), QString::fromUtf16(reinterpret_cast<const char16_t*>(message),
                                            qMin<int>(length, int(std::size(message)) - 1))};
}

[[noreturn]] void fail(SQLHSTMT statement) {
    throw diagnostic(SQL_HANDLE_STMT, statement);
}

// One value read whole as wide text, however long.
QVariant readValue(SQLHSTMT statement, SQLUSMALLINT column) {
    QString text;
    char16_t chunk[4096];
    for (;;) {
        SQLLEN indicator = 0;
        const SQLRETURN rc =
            SQLGetData(statement, column, SQL_C_WCHAR, chunk, sizeof chunk, &indicator);
        if (rc == SQL_NO_DATA) {
            break;
        }
        if (!SQL_SUCCEEDED(rc)) {
            fail(statement);
        }
        if (indicator == SQL_NULL_DATA) {
            return {};
        }
        const qsizetype room = qsizetype(std::size(chunk)) - 1;
        const qsizetype got =
            indicator == SQL_NO_TOTAL ? room : qMin<qsizetype>(indicator / 2, room);
        text += QString::fromUtf16(chunk, got);
        if (rc == SQL_SUCCESS) {
            break;
        }
    }
    return text;
}

}  // namespace

TsqlClient::TsqlClient(const QString& server, int port, const QString& user,
                       const QString& password, const QString& database) {
    SQLAllocHandle(SQL_HANDLE_ENV, SQL_NULL_HANDLE, &environment_);
    SQLSetEnvAttr(environment_, SQL_ATTR_ODBC_VERSION, reinterpret_cast<SQLPOINTER>(SQL_OV_ODBC3),
                  0);
    SQLAllocHandle(SQL_HANDLE_DBC, environment_, &connection_);
    const QString text = QStringLiteral(
                             "DRIVER=FreeTDS;SERVER=%1;Port=%2;UID=%3;PWD=%4;DATABASE=%5;"
                             "TDS_Version=7.3;ClientCharset=UTF-8")
                             .arg(server)
                             .arg(port)
                             .arg(user, password, database);
    if (!SQL_SUCCEEDED(SQLDriverConnectW(connection_, nullptr, const_cast<SQLWCHAR*>(wide(text)),
                                         SQL_NTS, nullptr, 0, nullptr, SQL_DRIVER_NOPROMPT))) {
        const runtime::RuntimeError error = diagnostic(SQL_HANDLE_DBC, connection_);
        close();
        throw error;
    }
}

TsqlClient::~TsqlClient() {
    close();
}

void TsqlClient::close() {
    if (connection_) {
        SQLDisconnect(connection_);
        SQLFreeHandle(SQL_HANDLE_DBC, connection_);
        connection_ = nullptr;
    }
    if (environment_) {
        SQLFreeHandle(SQL_HANDLE_ENV, environment_);
        environment_ = nullptr;
    }
}

QList<QVariantList> TsqlClient::run(const QString& batch) {
    SQLHSTMT statement = SQL_NULL_HSTMT;
    SQLAllocHandle(SQL_HANDLE_STMT, connection_, &statement);
    struct Release {
        SQLHSTMT handle;
        ~Release() { SQLFreeHandle(SQL_HANDLE_STMT, handle); }
    } release{statement};
    SQLRETURN rc = SQLExecDirectW(statement, const_cast<SQLWCHAR*>(wide(batch)), SQL_NTS);
    QList<QVariantList> rows;
    while (rc != SQL_NO_DATA) {
        if (!SQL_SUCCEEDED(rc)) {
            fail(statement);
        }
        SQLSMALLINT columns = 0;
        SQLNumResultCols(statement, &columns);
        while (columns > 0 && (rc = SQLFetch(statement)) != SQL_NO_DATA) {
            if (!SQL_SUCCEEDED(rc)) {
                fail(statement);
            }
            QVariantList row;
            for (SQLUSMALLINT column = 1; column <= columns; ++column) {
                row << readValue(statement, column);
            }
            rows << row;
        }
        rc = SQLMoreResults(statement);
    }
    return rows;
}

QStringList scriptBatches(const QString& script) {
    static const QRegularExpression go(
        QStringLiteral(R"(^\s*GO\s*$)"),
        QRegularExpression::CaseInsensitiveOption | QRegularExpression::MultilineOption);
    QStringList batches;
    for (const QString& batch : script.split(go)) {
        if (!batch.trimmed().isEmpty()) {
            batches << batch;
        }
    }
    return batches;
}

}  // namespace qivo::test
