#pragma once

#include <QString>
#include <QStringView>
#include <optional>

namespace qivo::database {

// The date spellings the program accepts, as the database converts them: 2024-03-05,
// 2024/3/5, 2024.3.5, 20240305, each optionally followed by a time (hh:mm or hh:mm:ss).
// Returns ISO text, "yyyy-mm-dd" or "yyyy-mm-dd hh:mm:ss"; nothing for any other text.
std::optional<QString> normalizeDate(QStringView text);

// The date-recognition test a screen applies to typed text before saving it.
inline bool IsDate(QStringView text) {
    return normalizeDate(text).has_value();
}

}  // namespace qivo::database
