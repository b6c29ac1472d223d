#include "database/dates.h"

#include <QDate>
#include <QRegularExpression>
#include <QTime>

namespace qivo::database {

std::optional<QString> normalizeDate(QStringView text) {
    // Date part: y-m-d with one separator kind, or eight digits; time part optional.
    static const QRegularExpression pattern(QStringLiteral(
        R"(^\s*(?:(\d{4})([-/.])(\d{1,2})\2(\d{1,2})|(\d{4})(\d{2})(\d{2}))(?:[ T](\d{1,2}):(\d{2})(?::(\d{2})(?:\.\d{1,3})?)?)?\s*$)"));
    const QRegularExpressionMatch match = pattern.match(text.toString());
    if (!match.hasMatch()) {
        return std::nullopt;
    }
    const bool digitsOnly = match.capturedLength(5) > 0;
    const QDate date(match.captured(digitsOnly ? 5 : 1).toInt(),
                     match.captured(digitsOnly ? 6 : 3).toInt(),
                     match.captured(digitsOnly ? 7 : 4).toInt());
    if (!date.isValid() || date.year() < 1753) {
        return std::nullopt;
    }
    if (match.capturedLength(8) == 0) {
        return date.toString(QStringLiteral("yyyy-MM-dd"));
    }
    const QTime time(match.captured(8).toInt(), match.captured(9).toInt(),
                     match.captured(10).toInt());
    if (!time.isValid()) {
        return std::nullopt;
    }
    if (time == QTime(0, 0)) {
        return date.toString(QStringLiteral("yyyy-MM-dd"));
    }
    return date.toString(QStringLiteral("yyyy-MM-dd ")) + time.toString(QStringLiteral("HH:mm:ss"));
}

}  // namespace qivo::database
