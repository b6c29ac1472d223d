#include "support/tds_results.h"

#include <sqlite3.h>

#include <QDateTime>
#include <QRegularExpression>
#include <algorithm>

#include "database/sqlite/sqlite_engine.h"
#include "support/tds_catalog.h"
#include "support/tds_code_page.h"

namespace qivo::test::tds {
namespace {

constexpr quint8 kIntN = 0x26;
constexpr quint8 kBitN = 0x68;
constexpr quint8 kDateTimeN = 0x6F;
constexpr quint8 kVarChar = 0xA7;
constexpr quint8 kNVarChar = 0xE7;
// A case-, kana- and width-insensitive collation of the locale whose code page varchar has:
// Chinese_PRC (0x0804, code page 936), Chinese_Taiwan (0x0404, 950), Latin1_General (0x0409, 1252).
QByteArray collation(int codePage) {
    const quint16 locale = codePage == 950 ? 0x0404 : codePage == 1252 ? 0x0409 : 0x0804;
    const char bytes[5] = {char(locale & 0xFF), char(locale >> 8), char(0xD0), 0x00, 0x00};
    return QByteArray(bytes, sizeof bytes);
}

struct Column {
    QString name;
    quint8 type = kIntN;
    int size = 0;        // bytes
    int codePage = 936;  // of varchar
};

// The widest value of a text column: in bytes of code page 936, or in characters.
int widest(const std::vector<QVariantList>& rows, int index, bool wide, int codePage) {
    int result = 1;
    for (const QVariantList& row : rows) {
        if (!row[index].isNull()) {
            const QString text = row[index].toString();
            result = qMax(result, int(wide ? text.size() : toCodePage(text, codePage).size()));
        }
    }
    return result;
}

bool allIntegers(const std::vector<QVariantList>& rows, int index) {
    return std::all_of(rows.begin(), rows.end(), [index](const QVariantList& row) {
        return row[index].isNull() || row[index].typeId() == QMetaType::LongLong;
    });
}

// The type and size a table column has on SQL Server, by name and embedded declared type: text
// columns are declared with their server type, varchar(n) or nvarchar(n).
Column schemaColumn(const QString& name, const QString& declared) {
    static const QRegularExpression text(R"(^(n?)varchar\((\d+)\))",
                                         QRegularExpression::CaseInsensitiveOption);
    if (const auto match = text.match(declared); match.hasMatch()) {
        const bool wide = !match.captured(1).isEmpty();
        return {name, wide ? kNVarChar : kVarChar, match.captured(2).toInt() * (wide ? 2 : 1)};
    }
    if (declared.contains("DATE")) {
        return {name, kDateTimeN};
    }
    if (name == "短信") {
        return {name, kBitN};
    }
    if (declared.startsWith("INTEGER")) {
        return {name, kIntN};
    }
    return {name, kVarChar, 50};
}

// Which SQL Server type a result column has: the schema's, the one a cast names, else one the
// values fit. Text columns grow to the widest value, so every value can go out.
Column describe(sqlite3_stmt* statement, int index, const std::vector<QVariantList>& rows,
                int codePage) {
    static const QRegularExpression cast(
        R"(^cast\(.*\bas\s+(n?varchar)\((\d+)\)\)$)",
        QRegularExpression::CaseInsensitiveOption | QRegularExpression::DotMatchesEverythingOption);
    const QString name = QString::fromUtf8(sqlite3_column_name(statement, index));
    const QString declared = QString::fromUtf8(sqlite3_column_decltype(statement, index));
    const QString origin = QString::fromUtf8(sqlite3_column_origin_name(statement, index));
    Column column{name, kVarChar, 1};
    if (!origin.isEmpty()) {
        column = schemaColumn(origin, declared);
        column.name = name;
    } else if (const auto match = cast.match(name); match.hasMatch()) {
        const bool wide = match.captured(1).size() == 8;
        column = {QString(), wide ? kNVarChar : kVarChar,
                  match.captured(2).toInt() * (wide ? 2 : 1)};
    } else if (allIntegers(rows, index)) {
        column.type = kIntN;
    }
    if (column.type == kVarChar || column.type == kNVarChar) {
        const bool wide = column.type == kNVarChar;
        column.size = qMax(column.size, widest(rows, index, wide, codePage) * (wide ? 2 : 1));
    }
    column.codePage = codePage;
    return column;
}

void writeColumns(Writer& out, const QList<Column>& columns) {
    out.u8(kTokenColumns);
    out.u16(quint16(columns.size()));
    for (const Column& column : columns) {
        out.u32(0);       // user type
        out.u16(0x0009);  // nullable, updatable
        out.u8(column.type);
        switch (column.type) {
            case kIntN:
                out.u8(4);
                break;
            case kBitN:
                out.u8(1);
                break;
            case kDateTimeN:
                out.u8(8);
                break;
            default:
                out.u16(quint16(column.size));
                out.data.append(collation(column.codePage));
        }
        out.bVarchar(column.name);
    }
}

void writeValue(Writer& out, const Column& column, const QVariant& value) {
    const bool isNull = value.isNull();
    switch (column.type) {
        case kIntN:
            out.u8(isNull ? 0 : 4);
            if (!isNull) {
                out.u32(quint32(value.toLongLong()));
            }
            return;
        case kBitN:
            out.u8(isNull ? 0 : 1);
            if (!isNull) {
                out.u8(value.toLongLong() != 0);
            }
            return;
        case kDateTimeN: {
            const QString text = value.toString();
            const QDateTime moment = text.size() > 10
                                         ? QDateTime::fromString(text, "yyyy-MM-dd HH:mm:ss")
                                         : QDateTime(QDate::fromString(text, Qt::ISODate), {});
            if (isNull || !moment.isValid()) {
                out.u8(0);
                return;
            }
            out.u8(8);
            out.u32(quint32(QDate(1900, 1, 1).daysTo(moment.date())));
            out.u32(quint32(qint64(moment.time().msecsSinceStartOfDay()) * 300 / 1000));
            return;
        }
        default: {
            if (isNull) {
                out.u16(0xFFFF);
                return;
            }
            const QString text = value.toString();
            const QByteArray bytes =
                column.type == kVarChar
                    ? toCodePage(text, column.codePage)
                    : QByteArray(reinterpret_cast<const char*>(text.utf16()), text.size() * 2);
            out.u16(quint16(bytes.size()));
            out.data.append(bytes);
        }
    }
}

QVariant columnValue(sqlite3_stmt* statement, int index) {
    switch (sqlite3_column_type(statement, index)) {
        case SQLITE_NULL:
            return {};
        case SQLITE_INTEGER:
            return qlonglong(sqlite3_column_int64(statement, index));
        case SQLITE_FLOAT:
            return sqlite3_column_double(statement, index);
        default:
            return QString::fromUtf8(
                reinterpret_cast<const char*>(sqlite3_column_text(statement, index)));
    }
}

void bind(sqlite3_stmt* statement, const Parameters& parameters) {
    for (const auto& [name, value] : parameters) {
        const int index = sqlite3_bind_parameter_index(statement, name.toUtf8().constData());
        if (index == 0) {
            continue;
        }
        if (value.isNull()) {
            sqlite3_bind_null(statement, index);
        } else if (value.typeId() == QMetaType::LongLong) {
            sqlite3_bind_int64(statement, index, value.toLongLong());
        } else if (value.typeId() == QMetaType::Double) {
            sqlite3_bind_double(statement, index, value.toDouble());
        } else {
            const QByteArray text = value.toString().toUtf8();
            sqlite3_bind_text(statement, index, text.constData(), int(text.size()),
                              SQLITE_TRANSIENT);
        }
    }
}

// SQL Server's syntax error where the embedded engine found one. A statement's unknown first
// word is the name of a procedure to SQL Server (a batch calls one without EXEC), so it stumbles
// on the word after it instead; a keyword there is error 156.
void writeSyntaxError(Writer& out, const QString& statement, QString near) {
    static const QRegularExpression firstWords(R"(^\s*(\S+)\s+(\w+))");
    static const QStringList keywords = {"from",   "where",  "set",    "values", "into", "select",
                                         "delete", "update", "insert", "order",  "by",   "and"};
    if (const auto words = firstWords.match(statement);
        words.hasMatch() && words.captured(1).compare(near, Qt::CaseInsensitive) == 0) {
        near = words.captured(2);
    }
    if (keywords.contains(near.toLower())) {
        writeError(out, 156, QStringLiteral("Incorrect syntax near the keyword '%1'.").arg(near));
    } else {
        writeError(out, 102, QStringLiteral("Incorrect syntax near '%1'.").arg(near));
    }
}

// The server's error for what the embedded engine refused.
void writeSqliteError(Writer& out, const QString& statement, const QString& message) {
    static const QRegularExpression nearToken(R"re(near "([^"]*)": syntax error)re");
    if (const auto match = nearToken.match(message); match.hasMatch()) {
        writeSyntaxError(out, statement, match.captured(1));
    } else if (message.startsWith("no such table: ")) {
        writeError(out, 208, QStringLiteral("Invalid object name '%1'.").arg(message.mid(15)));
    } else if (message.startsWith("no such column: ")) {
        writeError(out, 207, QStringLiteral("Invalid column name '%1'.").arg(message.mid(16)));
    } else if (message == database::dateConversionMessage()) {
        writeError(out, 241,
                   "Conversion failed when converting date and/or time from character string.");
    } else if (message == database::truncationMessage()) {
        writeError(out, 8152, "String or binary data would be truncated.");
    } else if (message.startsWith("UNIQUE constraint failed")) {
        writeError(out, 2627, "Violation of PRIMARY KEY constraint. " + message);
    } else {
        writeError(out, 50000, message);
    }
}

bool isSessionSetting(const QString& statement) {
    return statement.startsWith("set ", Qt::CaseInsensitive) ||
           statement.startsWith("use ", Qt::CaseInsensitive);
}

}  // namespace

ServerType serverType(const QString& column, const QString& declared) {
    const Column type = schemaColumn(column, declared);
    switch (type.type) {
        case kIntN:
            return {QStringLiteral("int"), {}};
        case kBitN:
            return {QStringLiteral("bit"), {}};
        case kDateTimeN:
            return {QStringLiteral("datetime"), {}};
        case kNVarChar:
            return {QStringLiteral("nvarchar"), type.size / 2};
        default:
            return {QStringLiteral("varchar"), type.size};
    }
}

void writeDone(Writer& out, quint8 token, quint16 status, quint64 count) {
    out.u8(token);
    out.u16(status);
    out.u16(0xC1);
    out.u64(count);
}

void writeError(Writer& out, quint32 number, const QString& message) {
    const qsizetype start = out.beginToken(kTokenError);
    out.u32(number);
    out.u8(1);   // state
    out.u8(16);  // severity of a user error
    out.usVarchar(message);
    out.bVarchar("QIVOTEST");
    out.bVarchar("");
    out.u32(1);
    out.endToken(start);
}

bool runText(sqlite3* db, const QString& text, const Parameters& parameters, bool inProcedure,
             int codePage, Writer& out) {
    const quint8 done = inProcedure ? kTokenDoneInProc : kTokenDone;
    const QStringList statements = database::SqliteEngine(QString()).statements(text);
    for (const QString& statement : statements) {
        if (isSessionSetting(statement)) {
            writeDone(out, done, kDoneMore);
            continue;
        }
        sqlite3_stmt* prepared = nullptr;
        const QByteArray utf8 = embeddedForms(statement).toUtf8();
        if (sqlite3_prepare_v2(db, utf8.constData(), int(utf8.size()), &prepared, nullptr) !=
            SQLITE_OK) {
            writeSqliteError(out, statement, QString::fromUtf8(sqlite3_errmsg(db)));
            writeDone(out, done, kDoneError | kDoneMore);
            return false;
        }
        bind(prepared, parameters);
        std::vector<QVariantList> rows;
        const int columnCount = sqlite3_column_count(prepared);
        int step;
        while ((step = sqlite3_step(prepared)) == SQLITE_ROW) {
            QVariantList row;
            for (int c = 0; c < columnCount; ++c) {
                row << columnValue(prepared, c);
            }
            rows.push_back(std::move(row));
        }
        if (step != SQLITE_DONE) {
            writeSqliteError(out, statement, QString::fromUtf8(sqlite3_errmsg(db)));
            sqlite3_finalize(prepared);
            writeDone(out, done, kDoneError | kDoneMore);
            return false;
        }
        if (columnCount > 0) {
            QList<Column> columns;
            for (int c = 0; c < columnCount; ++c) {
                columns << describe(prepared, c, rows, codePage);
            }
            writeColumns(out, columns);
            for (const QVariantList& row : rows) {
                out.u8(kTokenRow);
                for (int c = 0; c < columnCount; ++c) {
                    writeValue(out, columns[c], row[c]);
                }
            }
            writeDone(out, done, kDoneMore | kDoneCount, rows.size());
        } else {
            writeDone(out, done, kDoneMore | kDoneCount, quint64(sqlite3_changes(db)));
        }
        sqlite3_finalize(prepared);
    }
    return true;
}

}  // namespace qivo::test::tds
