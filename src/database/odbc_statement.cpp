#include "database/odbc_statement.h"

#ifdef _WIN32
#include <windows.h>
#endif
#include <sql.h>
#include <sqlext.h>

#include <QDate>
#include <QDateTime>
#include <iterator>

#include "database/odbc_wait.h"
#include "runtime/runtime_error.h"

namespace qivo::database {
namespace {

// The number the screens test for a date the database could not convert.
constexpr long kDateConversion = -2147217913;

long errorNumber(SQLINTEGER native) {
    switch (native) {
        case 241:  // date or time from text
        case 242:  // out-of-range date
        case 295:  // smalldatetime from text
            return kDateConversion;
        case 102:   // incorrect syntax
        case 156:   // incorrect syntax near a keyword
        case 207:   // invalid column
        case 208:   // invalid object
        case 515:   // Null into a column that refuses it
        case 547:   // constraint
        case 2601:  // duplicate key in a unique index
        case 2627:  // duplicate key of a constraint
        case 2628:  // text longer than its column, naming it
        case 8152:  // text longer than its column
            return native;
        default:
            return runtime::err::ProviderError;
    }
}

QString fromWide(const SQLWCHAR* text, qsizetype length) {
    return QString::fromUtf16(reinterpret_cast<const char16_t*>(text), length);
}

// The connection's environment is ODBC 2 (odbc_driver.cpp), whose date types have their own codes.
bool isDateOnlyType(SQLSMALLINT type) {
    return type == SQL_TYPE_DATE || type == SQL_DATE;
}

bool isDateType(SQLSMALLINT type) {
    return isDateOnlyType(type) || type == SQL_TYPE_TIMESTAMP || type == SQL_TIMESTAMP;
}

}  // namespace

void throwOdbcError(short handleType, void* handle) {
    QString description;
    long number = runtime::err::ProviderError;
    SQLWCHAR state[6];
    SQLWCHAR text[2048];
    SQLINTEGER native = 0;
    SQLSMALLINT length = 0;
    // The first record naming a server error decides; the driver's own come without a number.
    for (SQLSMALLINT record = 1;
         SQL_SUCCEEDED(SQLGetDiagRecW(handleType, handle, record, state, &native, text,
                                      SQLSMALLINT(std::size(text)), &length));
         ++record) {
        const QString message = fromWide(text, qMin<qsizetype>(length, std::size(text) - 1));
        if (description.isEmpty() || (number == runtime::err::ProviderError && native != 0)) {
            description = message;
            number = native != 0 ? errorNumber(native) : number;
        }
        if (native != 0) {
            break;
        }
    }
    if (description.isEmpty()) {
        description = QStringLiteral("ODBC 调用失败。");
    }
    throw runtime::RuntimeError(number, description);
}

// A bound value and the buffer the driver reads it from until the statement runs.
struct OdbcStatement::Parameter {
    QString text;
    qint64 integer = 0;
    double real = 0;
    unsigned char bit = 0;
    SQLLEN indicator = 0;
};

OdbcStatement::OdbcStatement(void* connection) : connection_(connection) {
    if (!SQL_SUCCEEDED(SQLAllocHandle(SQL_HANDLE_STMT, connection_, &handle_))) {
        throwOdbcError(SQL_HANDLE_DBC, connection_);
    }
}

OdbcStatement::~OdbcStatement() {
    statementEnding(handle_);
    SQLFreeHandle(SQL_HANDLE_STMT, handle_);
}

void OdbcStatement::fail() const {
    throwOdbcError(SQL_HANDLE_STMT, handle_);
}

void OdbcStatement::bind(const QVariantList& values) {
    for (const QVariant& value : values) {
        auto parameter = std::make_unique<Parameter>();
        Parameter& p = *parameter;
        SQLSMALLINT cType = SQL_C_WCHAR;
        SQLSMALLINT sqlType = SQL_WVARCHAR;
        SQLULEN size = 1;
        SQLPOINTER buffer = nullptr;
        switch (value.isNull() ? QMetaType::UnknownType : value.typeId()) {
            case QMetaType::UnknownType:
                // A Null of a text type converts to every column type, where an untyped one
                // arrives as binary and is refused by date and text columns.
                p.indicator = SQL_NULL_DATA;
                break;
            case QMetaType::Bool:
                p.bit = value.toBool() ? 1 : 0;
                cType = SQL_C_BIT;
                sqlType = SQL_BIT;
                buffer = &p.bit;
                break;
            case QMetaType::Int:
            case QMetaType::UInt:
            case QMetaType::LongLong:
            case QMetaType::Short:
                p.integer = value.toLongLong();
                cType = SQL_C_SBIGINT;
                sqlType = SQL_BIGINT;
                buffer = &p.integer;
                break;
            case QMetaType::Double:
                p.real = value.toDouble();
                cType = SQL_C_DOUBLE;
                sqlType = SQL_DOUBLE;
                buffer = &p.real;
                break;
            case QMetaType::QDate:
                p.text = value.toDate().toString(QStringLiteral("yyyyMMdd"));
                break;
            case QMetaType::QDateTime:
                p.text = value.toDateTime().toString(QStringLiteral("yyyyMMdd HH:mm:ss"));
                break;
            default:
                p.text = value.toString();
                break;
        }
        if (cType == SQL_C_WCHAR && p.indicator != SQL_NULL_DATA) {
            // An empty text still declares one character: a size of 0 is refused.
            size = qMax<SQLULEN>(1, p.text.size());
            sqlType = p.text.size() > 4000 ? SQL_WLONGVARCHAR : SQL_WVARCHAR;
            p.indicator = p.text.size() * SQLLEN(sizeof(SQLWCHAR));
            buffer = const_cast<QChar*>(p.text.constData());
        }
        const auto number = SQLUSMALLINT(parameters_.size() + 1);
        if (!SQL_SUCCEEDED(SQLBindParameter(handle_, number, SQL_PARAM_INPUT, cType, sqlType, size,
                                            0, buffer, 0, &p.indicator))) {
            fail();
        }
        parameters_.push_back(std::move(parameter));
    }
}

void OdbcStatement::execute(const QString& sql, const QVariantList& values) {
    bind(values);
    statementStarting(handle_);
    const SQLRETURN result =
        SQLExecDirectW(handle_, reinterpret_cast<SQLWCHAR*>(const_cast<QChar*>(sql.constData())),
                       SQLINTEGER(sql.size()));
    if (!SQL_SUCCEEDED(result) && result != SQL_NO_DATA) {
        fail();
    }
}

// Skips the counts of statements that return no rows (an INSERT before its identity SELECT).
bool OdbcStatement::moveToRows() {
    for (;;) {
        SQLSMALLINT columns = 0;
        if (!SQL_SUCCEEDED(SQLNumResultCols(handle_, &columns))) {
            fail();
        }
        if (columns > 0) {
            return true;
        }
        noteRowCount();
        const SQLRETURN more = SQLMoreResults(handle_);
        if (more == SQL_NO_DATA) {
            return false;
        }
        if (!SQL_SUCCEEDED(more)) {
            fail();
        }
    }
}

// A later statement's error arrives only when its result is reached.
void OdbcStatement::drain() {
    for (;;) {
        const SQLRETURN more = SQLMoreResults(handle_);
        if (more == SQL_NO_DATA) {
            return;
        }
        if (!SQL_SUCCEEDED(more)) {
            fail();
        }
        noteRowCount();
    }
}

void OdbcStatement::noteRowCount() {
    SQLLEN rows = -1;
    if (SQL_SUCCEEDED(SQLRowCount(handle_, &rows)) && rows >= 0) {
        changed_ = rows;
    }
}

OdbcRows OdbcStatement::readAll() {
    OdbcRows result;
    if (!moveToRows()) {
        return result;
    }
    SQLSMALLINT columns = 0;
    SQLNumResultCols(handle_, &columns);
    std::vector<SQLSMALLINT> types(columns);
    for (SQLSMALLINT c = 0; c < columns; ++c) {
        SQLWCHAR name[256];
        SQLSMALLINT nameLength = 0;
        SQLULEN size = 0;
        SQLSMALLINT digits = 0;
        SQLSMALLINT nullable = 0;
        if (!SQL_SUCCEEDED(SQLDescribeColW(handle_, SQLUSMALLINT(c + 1), name,
                                           SQLSMALLINT(std::size(name)), &nameLength, &types[c],
                                           &size, &digits, &nullable))) {
            fail();
        }
        result.names << fromWide(name, qMin<qsizetype>(nameLength, std::size(name) - 1));
        result.dates.push_back(isDateType(types[c]));
    }
    for (;;) {
        const SQLRETURN fetched = SQLFetch(handle_);
        if (fetched == SQL_NO_DATA) {
            break;
        }
        if (!SQL_SUCCEEDED(fetched)) {
            fail();
        }
        QVariantList row;
        row.reserve(columns);
        for (int c = 0; c < columns; ++c) {
            row << readValue(c + 1, types[c]);
        }
        result.rows.push_back(std::move(row));
    }
    drain();
    return result;
}

QVariant OdbcStatement::readValue(int column, short type) {
    SQLLEN indicator = 0;
    auto get = [&](SQLSMALLINT cType, void* target, SQLLEN size) {
        if (!SQL_SUCCEEDED(
                SQLGetData(handle_, SQLUSMALLINT(column), cType, target, size, &indicator))) {
            fail();
        }
        return indicator != SQL_NULL_DATA;
    };
    switch (type) {
        case SQL_BIT: {
            unsigned char bit = 0;
            return get(SQL_C_BIT, &bit, sizeof bit) ? QVariant(bit != 0) : QVariant();
        }
        case SQL_TINYINT:
        case SQL_SMALLINT:
        case SQL_INTEGER:
        case SQL_BIGINT: {
            qint64 integer = 0;
            return get(SQL_C_SBIGINT, &integer, sizeof integer) ? QVariant(qlonglong(integer))
                                                                : QVariant();
        }
        case SQL_REAL:
        case SQL_FLOAT:
        case SQL_DOUBLE: {
            double real = 0;
            return get(SQL_C_DOUBLE, &real, sizeof real) ? QVariant(real) : QVariant();
        }
        default: {
            if (isDateType(type)) {
                SQL_TIMESTAMP_STRUCT t{};
                if (!get(SQL_C_TIMESTAMP, &t, sizeof t)) {
                    return {};
                }
                const QDate date(t.year, t.month, t.day);
                if (isDateOnlyType(type)) {
                    return date;
                }
                return QDateTime(date,
                                 QTime(t.hour, t.minute, t.second, int(t.fraction / 1000000)));
            }
            bool isNull = false;
            const QString text = readText(column, isNull);
            return isNull ? QVariant() : QVariant(text);
        }
    }
}

// Wide text, read piece by piece until the driver has given all of it: a value longer than the
// buffer, or of a length the driver does not know in advance, arrives in several pieces.
QString OdbcStatement::readText(int column, bool& isNull) {
    QString text;
    SQLWCHAR buffer[1024];
    constexpr SQLLEN kCapacity = sizeof buffer - sizeof(SQLWCHAR);
    for (;;) {
        SQLLEN indicator = 0;
        const SQLRETURN result = SQLGetData(handle_, SQLUSMALLINT(column), SQL_C_WCHAR, buffer,
                                            sizeof buffer, &indicator);
        if (result == SQL_NO_DATA) {
            return text;
        }
        if (!SQL_SUCCEEDED(result)) {
            fail();
        }
        if (indicator == SQL_NULL_DATA) {
            isNull = true;
            return {};
        }
        const bool partial =
            result == SQL_SUCCESS_WITH_INFO && (indicator == SQL_NO_TOTAL || indicator > kCapacity);
        const SQLLEN bytes = partial ? kCapacity : indicator;
        text += fromWide(buffer, bytes / SQLLEN(sizeof(SQLWCHAR)));
        if (!partial) {
            return text;
        }
    }
}

namespace {

bool autocommitOn(void* connection) {
    SQLULEN mode = SQL_AUTOCOMMIT_OFF;
    SQLGetConnectAttrW(connection, SQL_ATTR_AUTOCOMMIT, &mode, sizeof mode, nullptr);
    return mode == SQL_AUTOCOMMIT_ON;
}

void setAutocommit(void* connection, SQLULEN mode) {
    if (!SQL_SUCCEEDED(SQLSetConnectAttrW(connection, SQL_ATTR_AUTOCOMMIT,
                                          reinterpret_cast<SQLPOINTER>(mode), SQL_IS_UINTEGER))) {
        throwOdbcError(SQL_HANDLE_DBC, connection);
    }
}

void undo(void* connection) {
    SQLEndTran(SQL_HANDLE_DBC, connection, SQL_ROLLBACK);
    SQLSetConnectAttrW(connection, SQL_ATTR_AUTOCOMMIT,
                       reinterpret_cast<SQLPOINTER>(SQL_AUTOCOMMIT_ON), SQL_IS_UINTEGER);
}

}  // namespace

bool inTransaction(void* connection, const std::function<bool()>& work) {
    if (!autocommitOn(connection)) {
        return work();
    }
    setAutocommit(connection, SQL_AUTOCOMMIT_OFF);
    bool keep = false;
    try {
        keep = work();
        if (keep) {
            commitStarting();
            if (!SQL_SUCCEEDED(SQLEndTran(SQL_HANDLE_DBC, connection, SQL_COMMIT))) {
                throwOdbcError(SQL_HANDLE_DBC, connection);
            }
        }
    } catch (...) {
        undo(connection);
        throw;
    }
    if (!keep) {
        undo(connection);
        return false;
    }
    setAutocommit(connection, SQL_AUTOCOMMIT_ON);
    return true;
}

bool connectionDead(void* connection) {
    SQLULEN dead = SQL_CD_FALSE;
    return SQL_SUCCEEDED(SQLGetConnectAttrW(connection, SQL_ATTR_CONNECTION_DEAD, &dead,
                                            sizeof dead, nullptr)) &&
           dead == SQL_CD_TRUE;
}

bool autocommitRestored(void* connection) {
    if (!autocommitOn(connection)) {
        undo(connection);
    }
    return autocommitOn(connection);
}

qint64 openTransactions(void* connection) {
    OdbcStatement statement(connection);
    statement.execute(QStringLiteral("select @@trancount"));
    const OdbcRows rows = statement.readAll();
    return rows.rows.empty() ? 0 : rows.rows.front().value(0).toLongLong();
}

}  // namespace qivo::database
