#pragma once

#include <QByteArray>
#include <QString>

namespace qivo::runtime {

// The settings file as administrators write it by hand, read the way the registry hands values
// back on Windows: a value is everything after the first '=' up to the end of its line, with
// commas, backslashes, semicolons, quotes and blanks (outer ones too) kept; only the line break
// and a '\r' before it are removed. Section and key names compare without regard to case.
// The file is UTF-8, with or without a byte-order mark; a missing key reads as empty text.
QString iniValue(const QByteArray& file, const QString& section, const QString& key);

// The file with the key set to the value: the key's line replaced in place, or added at the end
// of its section (the section added when missing). Everything else stays byte for byte.
QByteArray withIniValue(const QByteArray& file, const QString& section, const QString& key,
                        const QString& value);

}  // namespace qivo::runtime
