#pragma once

namespace qivo::database {

// The order of the text collation (collation_table.cpp, written by tools/qivo_collation_table.cpp
// from ICU's Chinese collation), as UTF-8 in pieces. kCollationOrder lists characters from the
// lowest to the highest: Latin and punctuation, then Chinese in pinyin order. A character after
// '\1' differs from the one before only by its accent; one after '\2' equals it (case and width
// do not count). The collation skips the characters of kCollationIgnored; characters in neither
// list sort after all listed ones, by code point.
extern const char* const kCollationOrder[];
extern const int kCollationOrderPieces;
extern const char* const kCollationIgnored[];
extern const int kCollationIgnoredPieces;

}  // namespace qivo::database
