#include "database/odbc/odbc_statement.h"

#ifdef _WIN32
#include <windows.h>
#endif
#include <sql.h>
#include <sqlext.h>

#include <QDate>
#include <QDateTime>
#include <QStringEncoder>
#include <bit>
#include <cstdio>
#include <cstring>
#include <iterator>
#include <utility>

#include "database/odbc/odbc_wait.h"
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

namespace {

// Rows a fetch: a block is one call into the driver instead of one a cell.
constexpr SQLULEN kBlockRows = 256;
// Rows handed on at a time while the rest still arrive: each hand-over wakes the reader.
constexpr qsizetype kHandOverRows = 1024;
// A text column declared longer than this (or of no declared size, as varchar(max)) is read in
// pieces of whatever length it has instead of into a bound buffer of its declared size.
constexpr SQLULEN kLongestBound = 4000;
// UTF-8 bytes a declared character can take: three for a UTF-16 unit or a code-page character,
// four for a pair of surrogates, which SQL Server counts as two.
constexpr qint64 kUtf8PerCharacter = 3;

OdbcRows::Kind kindOf(SQLSMALLINT type) {
    switch (type) {
        case SQL_BIT:
            return OdbcRows::Kind::Bit;
        case SQL_TINYINT:
        case SQL_SMALLINT:
        case SQL_INTEGER:
        case SQL_BIGINT:
            return OdbcRows::Kind::Integer;
        case SQL_REAL:
        case SQL_FLOAT:
        case SQL_DOUBLE:
            return OdbcRows::Kind::Real;
        default:
            if (isDateOnlyType(type)) {
                return OdbcRows::Kind::Date;
            }
            return isDateType(type) ? OdbcRows::Kind::DateTime : OdbcRows::Kind::Text;
    }
}

// The characters a value of a column read as text can take: a text column's declared size; a
// number or binary value written out takes more (a sign and a point, two hex digits a byte).
qint64 textCharacters(SQLSMALLINT type, SQLULEN size) {
    switch (type) {
        case SQL_CHAR:
        case SQL_VARCHAR:
        case SQL_LONGVARCHAR:
        case SQL_WCHAR:
        case SQL_WVARCHAR:
        case SQL_WLONGVARCHAR:
            return qint64(size);
        default:
            return 2 * qint64(size) + 2;
    }
}

// Dates are kept as one number, yyyymmddhhmmssfff.
qint64 packMoment(const SQL_TIMESTAMP_STRUCT& t) {
    return ((((qint64(t.year) * 100 + t.month) * 100 + t.day) * 100 + t.hour) * 100 + t.minute) *
               100000 +
           qint64(t.second) * 1000 + qint64(t.fraction / 1000000);
}

QVariant unpackMoment(qint64 packed, bool dateOnly) {
    const auto part = [&packed](qint64 divisor) {
        const int value = int(packed % divisor);
        packed /= divisor;
        return value;
    };
    const int ms = part(1000), second = part(100), minute = part(100), hour = part(100),
              day = part(100), month = part(100);
    const QDate date(int(packed), month, day);
    if (dateOnly) {
        return date;
    }
    return QDateTime(date, QTime(hour, minute, second, ms));
}

// The C type a column is fetched as.
SQLSMALLINT cTypeOf(OdbcRows::Kind kind, bool utf8Text) {
    switch (kind) {
        case OdbcRows::Kind::Bit:
            return SQL_C_BIT;
        case OdbcRows::Kind::Integer:
            return SQL_C_SBIGINT;
        case OdbcRows::Kind::Real:
            return SQL_C_DOUBLE;
        case OdbcRows::Kind::Date:
        case OdbcRows::Kind::DateTime:
            return SQL_C_TIMESTAMP;
        case OdbcRows::Kind::Text:
            break;
    }
    return utf8Text ? SQL_C_CHAR : SQL_C_WCHAR;
}

// A fetched value that is not text, from the buffer the driver wrote it to.
void appendValue(OdbcRows& rows, OdbcRows::Kind kind, const void* value) {
    switch (kind) {
        case OdbcRows::Kind::Bit:
            rows.appendNumber(*static_cast<const unsigned char*>(value) != 0);
            return;
        case OdbcRows::Kind::Integer: {
            qint64 integer = 0;
            std::memcpy(&integer, value, sizeof integer);
            rows.appendNumber(integer);
            return;
        }
        case OdbcRows::Kind::Real: {
            double real = 0;
            std::memcpy(&real, value, sizeof real);
            rows.appendNumber(std::bit_cast<qint64>(real));
            return;
        }
        case OdbcRows::Kind::Date:
        case OdbcRows::Kind::DateTime: {
            SQL_TIMESTAMP_STRUCT moment{};
            std::memcpy(&moment, value, sizeof moment);
            rows.appendNumber(packMoment(moment));
            return;
        }
        case OdbcRows::Kind::Text:
            return;
    }
}

// Wide text into the store as UTF-8.
void appendWide(OdbcRows& rows, const SQLWCHAR* text, qsizetype units) {
    QStringEncoder encoder(QStringEncoder::Utf8, QStringEncoder::Flag::Stateless);
    char* room = rows.textRoom(units * kUtf8PerCharacter);
    char* end =
        encoder.appendToBuffer(room, QStringView(reinterpret_cast<const char16_t*>(text), units));
    rows.appendText(end - room);
}

}  // namespace

char* OdbcRows::textRoom(qsizetype bytes) {
    if (used_ + bytes > text_.size()) {
        text_.resize(qMax(used_ + bytes, 2 * text_.size()));
    }
    return text_.data() + used_;
}

void OdbcRows::appendText(qsizetype bytes) {
    cells_.push_back({used_, bytes});
    used_ += bytes;
}

OdbcRows OdbcRows::takeRows() {
    OdbcRows taken;
    taken.names = names;
    taken.kinds = kinds;
    taken.cells_.swap(cells_);
    taken.text_.swap(text_);
    taken.used_ = std::exchange(used_, 0);
    // The next block is about as large.
    cells_.reserve(taken.cells_.size());
    text_.resize(taken.used_);
    return taken;
}

QVariant OdbcRows::value(qsizetype row, int column) const {
    const Cell& cell = cells_[row * kinds.size() + column];
    if (cell.size < 0) {
        return {};
    }
    switch (kinds[column]) {
        case Kind::Text:
            // An empty text stays an empty text, not Null.
            return cell.size == 0 ? QStringLiteral("")
                                  : QString::fromUtf8(text_.constData() + cell.at, cell.size);
        case Kind::Integer:
            return qlonglong(cell.at);
        case Kind::Real:
            return std::bit_cast<double>(cell.at);
        case Kind::Bit:
            return cell.at != 0;
        case Kind::Date:
        case Kind::DateTime:
            return unpackMoment(cell.at, kinds[column] == Kind::Date);
    }
    return {};
}

std::optional<QByteArrayView> OdbcRows::dateUtf8(const Cell& cell, int column) const {
    if (!isDate(column)) {
        return std::nullopt;
    }
    dateTexts_.resize(kinds.size());
    char* text = dateTexts_[column].data();
    const qint64 day = cell.at / 1000000000;
    const qint64 time = cell.at % 1000000000;
    const int year = int(day / 10000), month = int(day / 100 % 100), dayOfMonth = int(day % 100);
    // fieldText's forms: the date alone at midnight, else to the second.
    const int length =
        kinds[column] == Kind::Date || time == 0
            ? std::snprintf(text, 20, "%04d-%02d-%02d", year, month, dayOfMonth)
            : std::snprintf(text, 20, "%04d-%02d-%02d %02d:%02d:%02d", year, month, dayOfMonth,
                            int(time / 10000000), int(time / 100000 % 100), int(time / 1000 % 100));
    return QByteArrayView(text, length);
}

OdbcRows OdbcStatement::readAll(bool utf8Text, const HandOver& handOver) {
    OdbcRows result;
    if (!moveToRows()) {
        return result;
    }
    SQLSMALLINT columns = 0;
    SQLNumResultCols(handle_, &columns);
    std::vector<qint64> sizes(columns);
    bool longText = false;
    for (SQLSMALLINT c = 0; c < columns; ++c) {
        SQLWCHAR name[256];
        SQLSMALLINT nameLength = 0;
        SQLSMALLINT type = 0;
        SQLULEN size = 0;
        SQLSMALLINT digits = 0;
        SQLSMALLINT nullable = 0;
        if (!SQL_SUCCEEDED(SQLDescribeColW(handle_, SQLUSMALLINT(c + 1), name,
                                           SQLSMALLINT(std::size(name)), &nameLength, &type, &size,
                                           &digits, &nullable))) {
            fail();
        }
        result.names << fromWide(name, qMin<qsizetype>(nameLength, std::size(name) - 1));
        result.kinds.push_back(kindOf(type));
        if (result.kinds.back() == OdbcRows::Kind::Text) {
            sizes[c] = textCharacters(type, size);
            longText = longText || size == 0 || sizes[c] > qint64(kLongestBound);
        }
    }
    if (longText) {
        readByCell(result, utf8Text, handOver);
    } else {
        readInBlocks(result, sizes, utf8Text, handOver);
    }
    drain();
    return result;
}

// Every column bound to a buffer of a block of rows, each text column as wide as its declared
// size can take.
void OdbcStatement::readInBlocks(OdbcRows& rows, const std::vector<qint64>& sizes, bool utf8Text,
                                 const HandOver& handOver) {
    struct Column {
        SQLLEN width = 0;
        std::vector<char> buffer;
        std::vector<SQLLEN> indicators;
    };
    const int count = int(sizes.size());
    std::vector<Column> columns(count);
    for (int c = 0; c < count; ++c) {
        Column& column = columns[c];
        const OdbcRows::Kind kind = rows.kinds[c];
        if (kind == OdbcRows::Kind::Text) {
            column.width = utf8Text ? SQLLEN(sizes[c] * kUtf8PerCharacter + 1)
                                    : SQLLEN((sizes[c] + 1) * sizeof(SQLWCHAR));
        } else {
            column.width = kind == OdbcRows::Kind::Bit    ? 1
                           : kind >= OdbcRows::Kind::Date ? SQLLEN(sizeof(SQL_TIMESTAMP_STRUCT))
                                                          : 8;
        }
        column.buffer.resize(column.width * kBlockRows);
        column.indicators.resize(kBlockRows);
        if (!SQL_SUCCEEDED(SQLBindCol(handle_, SQLUSMALLINT(c + 1), cTypeOf(kind, utf8Text),
                                      column.buffer.data(), column.width,
                                      column.indicators.data()))) {
            fail();
        }
    }
    // The connection's environment is ODBC 2, where SQLFetch gives one row whatever the array
    // size: a block is ODBC 2's own block fetch.
    if (!SQL_SUCCEEDED(SQLSetStmtAttr(handle_, SQL_ROWSET_SIZE,
                                      reinterpret_cast<SQLPOINTER>(kBlockRows), SQL_IS_UINTEGER))) {
        fail();
    }
    SQLULEN fetched = 0;
    std::vector<SQLUSMALLINT> statuses(kBlockRows);
    for (;;) {
        const SQLRETURN result =
            SQLExtendedFetch(handle_, SQL_FETCH_NEXT, 0, &fetched, statuses.data());
        if (result == SQL_NO_DATA) {
            break;
        }
        if (!SQL_SUCCEEDED(result)) {
            fail();
        }
        for (SQLULEN r = 0; r < fetched; ++r) {
            if (statuses[r] == SQL_ROW_ERROR) {
                fail();
            }
            for (int c = 0; c < count; ++c) {
                const Column& column = columns[c];
                const SQLLEN indicator = column.indicators[r];
                const char* value = column.buffer.data() + r * column.width;
                if (indicator == SQL_NULL_DATA) {
                    rows.appendNull();
                    continue;
                }
                if (rows.kinds[c] != OdbcRows::Kind::Text) {
                    appendValue(rows, rows.kinds[c], value);
                    continue;
                }
                // A server that sends more than it declared would otherwise lose the rest.
                const SQLLEN terminator = utf8Text ? 1 : SQLLEN(sizeof(SQLWCHAR));
                if (indicator == SQL_NO_TOTAL || indicator > column.width - terminator) {
                    throw runtime::RuntimeError(
                        runtime::err::ProviderError,
                        QStringLiteral("列 %1 的文字长于其声明的长度。").arg(rows.names[c]));
                }
                if (utf8Text) {
                    std::memcpy(rows.textRoom(indicator), value, indicator);
                    rows.appendText(indicator);
                } else {
                    appendWide(rows, reinterpret_cast<const SQLWCHAR*>(value),
                               indicator / SQLLEN(sizeof(SQLWCHAR)));
                }
            }
        }
        if (handOver && rows.rowCount() >= kHandOverRows) {
            handOver(rows);
        }
    }
    SQLFreeStmt(handle_, SQL_UNBIND);
}

// A row at a time and a cell at a time, for a result with long text.
void OdbcStatement::readByCell(OdbcRows& rows, bool utf8Text, const HandOver& handOver) {
    const int count = int(rows.kinds.size());
    for (;;) {
        if (handOver && rows.rowCount() >= kHandOverRows) {
            handOver(rows);
        }
        const SQLRETURN fetched = SQLFetch(handle_);
        if (fetched == SQL_NO_DATA) {
            return;
        }
        if (!SQL_SUCCEEDED(fetched)) {
            fail();
        }
        for (int c = 0; c < count; ++c) {
            const OdbcRows::Kind kind = rows.kinds[c];
            if (kind == OdbcRows::Kind::Text) {
                readText(rows, c + 1, utf8Text);
                continue;
            }
            SQL_TIMESTAMP_STRUCT value{};
            SQLLEN indicator = 0;
            if (!SQL_SUCCEEDED(SQLGetData(handle_, SQLUSMALLINT(c + 1), cTypeOf(kind, utf8Text),
                                          &value, sizeof value, &indicator))) {
                fail();
            }
            if (indicator == SQL_NULL_DATA) {
                rows.appendNull();
            } else {
                appendValue(rows, kind, &value);
            }
        }
    }
}

// Text read piece by piece until the driver has given all of it: a value longer than the buffer,
// or of a length the driver does not know in advance, arrives in several pieces.
void OdbcStatement::readText(OdbcRows& rows, int column, bool utf8Text) {
    char buffer[8192];
    const SQLLEN terminator = utf8Text ? 1 : SQLLEN(sizeof(SQLWCHAR));
    const SQLLEN capacity = SQLLEN(sizeof buffer) - terminator;
    QByteArray whole;
    for (;;) {
        SQLLEN indicator = 0;
        const SQLRETURN result =
            SQLGetData(handle_, SQLUSMALLINT(column), utf8Text ? SQL_C_CHAR : SQL_C_WCHAR, buffer,
                       sizeof buffer, &indicator);
        if (result == SQL_NO_DATA) {
            break;
        }
        if (!SQL_SUCCEEDED(result)) {
            fail();
        }
        if (indicator == SQL_NULL_DATA) {
            rows.appendNull();
            return;
        }
        const bool partial =
            result == SQL_SUCCESS_WITH_INFO && (indicator == SQL_NO_TOTAL || indicator > capacity);
        whole.append(buffer, partial ? capacity : indicator);
        if (!partial) {
            break;
        }
    }
    if (utf8Text) {
        std::memcpy(rows.textRoom(whole.size()), whole.constData(), whole.size());
        rows.appendText(whole.size());
    } else {
        appendWide(rows, reinterpret_cast<const SQLWCHAR*>(whole.constData()),
                   whole.size() / qsizetype(sizeof(SQLWCHAR)));
    }
}

bool autocommitOn(void* connection) {
    SQLULEN mode = SQL_AUTOCOMMIT_OFF;
    SQLGetConnectAttrW(connection, SQL_ATTR_AUTOCOMMIT, &mode, sizeof mode, nullptr);
    return mode == SQL_AUTOCOMMIT_ON;
}

bool connectionDead(void* connection) {
    SQLULEN dead = SQL_CD_FALSE;
    return SQL_SUCCEEDED(SQLGetConnectAttrW(connection, SQL_ATTR_CONNECTION_DEAD, &dead,
                                            sizeof dead, nullptr)) &&
           dead == SQL_CD_TRUE;
}

bool autocommitRestored(void* connection) {
    if (!autocommitOn(connection)) {
        SQLEndTran(SQL_HANDLE_DBC, connection, SQL_ROLLBACK);
        SQLSetConnectAttrW(connection, SQL_ATTR_AUTOCOMMIT,
                           reinterpret_cast<SQLPOINTER>(SQL_AUTOCOMMIT_ON), SQL_IS_UINTEGER);
    }
    return autocommitOn(connection);
}

qint64 openTransactions(void* connection) {
    OdbcStatement statement(connection);
    statement.execute(QStringLiteral("select @@trancount"));
    const OdbcRows rows = statement.readAll(false);
    return rows.rowCount() == 0 ? 0 : rows.value(0, 0).toLongLong();
}

}  // namespace qivo::database
