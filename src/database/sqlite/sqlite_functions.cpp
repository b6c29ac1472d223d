#include "database/sqlite/sqlite_functions.h"

#include <sqlite3.h>

#include <QString>
#include <algorithm>
#include <array>
#include <cstdint>
#include <string_view>

#include "database/dates.h"
#include "database/sql_text.h"
#include "database/sqlite/collation.h"
#include "database/sqlite/sqlite_engine.h"

namespace qivo::database {
namespace {

// Weights that order single ASCII characters as the collation does (punctuation, digits,
// letters; case folded), so the ASCII fast path agrees with the slow path. Control characters
// come first in code order and DEL last, as neither path's order has them.
const std::array<std::uint32_t, 128>& asciiWeights() {
    static const std::array<std::uint32_t, 128> weights = [] {
        std::array<std::uint32_t, 128> w{};
        for (char32_t c = 0; c < 128; ++c) {
            w[c] = c < 32 ? c : 32 + (collationWeight(c) >> 8);
        }
        w[127] = UINT32_MAX;
        return w;
    }();
    return weights;
}

int trimmedLength(const char* text, int length) {
    while (length > 0 && text[length - 1] == ' ') {
        --length;
    }
    return length;
}

bool isAscii(const char* text, int length) {
    for (int i = 0; i < length; ++i) {
        if (static_cast<unsigned char>(text[i]) >= 0x80) {
            return false;
        }
    }
    return true;
}

int collationCallback(void*, int lengthA, const void* a, int lengthB, const void* b) {
    return compareText(static_cast<const char*>(a), lengthA, static_cast<const char*>(b), lengthB);
}

void lenFunction(sqlite3_context* context, int, sqlite3_value** argv) {
    if (sqlite3_value_type(argv[0]) == SQLITE_NULL) {
        sqlite3_result_null(context);
        return;
    }
    const auto* text = reinterpret_cast<const char*>(sqlite3_value_text(argv[0]));
    const int length = trimmedLength(text, sqlite3_value_bytes(argv[0]));
    int characters = 0;
    for (int i = 0; i < length; ++i) {
        characters += (static_cast<unsigned char>(text[i]) & 0xC0) != 0x80;
    }
    sqlite3_result_int(context, characters);
}

void dateFunction(sqlite3_context* context, int, sqlite3_value** argv) {
    if (sqlite3_value_type(argv[0]) == SQLITE_NULL) {
        sqlite3_result_null(context);
        return;
    }
    const auto* text = reinterpret_cast<const char*>(sqlite3_value_text(argv[0]));
    const std::optional<QString> iso =
        normalizeDate(QString::fromUtf8(text, sqlite3_value_bytes(argv[0])));
    if (!iso) {
        const QByteArray message = dateConversionMessage().toUtf8();
        sqlite3_result_error(context, message.constData(), static_cast<int>(message.size()));
        return;
    }
    const QByteArray value = iso->toUtf8();
    sqlite3_result_text(context, value.constData(), static_cast<int>(value.size()),
                        SQLITE_TRANSIENT);
}

// qivo_fits(value, type, size): whether a value fits a text column of SQL Server's type
// ('varchar' or 'nvarchar') and size; else the server's truncation error. Trailing blanks that do
// not fit are dropped there without an error, so they are not counted.
void fitsFunction(sqlite3_context* context, int, sqlite3_value** argv) {
    if (sqlite3_value_type(argv[0]) == SQLITE_NULL) {
        sqlite3_result_int(context, 1);
        return;
    }
    const auto* text = reinterpret_cast<const char*>(sqlite3_value_text(argv[0]));
    const QString value =
        QString::fromUtf8(text, trimmedLength(text, sqlite3_value_bytes(argv[0])));
    const bool wide =
        std::string_view(reinterpret_cast<const char*>(sqlite3_value_text(argv[1]))) == "nvarchar";
    if (serverTextLength(value, wide) > sqlite3_value_int(argv[2])) {
        const QByteArray message = truncationMessage().toUtf8();
        sqlite3_result_error(context, message.constData(), static_cast<int>(message.size()));
        return;
    }
    sqlite3_result_int(context, 1);
}

}  // namespace

int compareText(const char* a, int lengthA, const char* b, int lengthB) {
    lengthA = trimmedLength(a, lengthA);
    lengthB = trimmedLength(b, lengthB);
    if (lengthA == lengthB && std::equal(a, a + lengthA, b)) {
        return 0;
    }
    if (isAscii(a, lengthA) && isAscii(b, lengthB)) {
        const auto& weights = asciiWeights();
        const int common = std::min(lengthA, lengthB);
        for (int i = 0; i < common; ++i) {
            const std::uint32_t wa = weights[static_cast<unsigned char>(a[i])];
            const std::uint32_t wb = weights[static_cast<unsigned char>(b[i])];
            if (wa != wb) {
                return wa < wb ? -1 : 1;
            }
        }
        return lengthA == lengthB ? 0 : (lengthA < lengthB ? -1 : 1);
    }
    return compareCollated(a, lengthA, b, lengthB);
}

bool registerSqliteFunctions(sqlite3* handle) {
    asciiWeights();
    const int flags = SQLITE_UTF8 | SQLITE_DETERMINISTIC;
    return sqlite3_create_collation_v2(handle, kTextCollation, SQLITE_UTF8, nullptr,
                                       collationCallback, nullptr) == SQLITE_OK &&
           sqlite3_create_function_v2(handle, "len", 1, flags, nullptr, lenFunction, nullptr,
                                      nullptr, nullptr) == SQLITE_OK &&
           sqlite3_create_function_v2(handle, "qivo_date", 1, flags, nullptr, dateFunction, nullptr,
                                      nullptr, nullptr) == SQLITE_OK &&
           sqlite3_create_function_v2(handle, "qivo_fits", 3, flags, nullptr, fitsFunction, nullptr,
                                      nullptr, nullptr) == SQLITE_OK;
}

}  // namespace qivo::database
