#pragma once

struct sqlite3;

namespace qivo::database {

// Registers on one SQLite handle what the embedded schema and the program's texts need:
// the text collation (case-insensitive, trailing blanks ignored, Chinese in pinyin order),
// len() (characters without trailing blanks), qivo_date() (a date spelling as ISO text, or
// the conversion error) and qivo_fits() (text within a column's size, or the truncation error).
// Returns false when SQLite refused a registration.
bool registerSqliteFunctions(sqlite3* handle);

// The collation's comparison of two UTF-8 texts, for tests and the benchmark floor.
int compareText(const char* a, int lengthA, const char* b, int lengthB);

}  // namespace qivo::database
