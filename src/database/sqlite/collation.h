#pragma once

#include <cstdint>

namespace qivo::database {

// A character's weight in the text collation: its place in the order times 256 plus its accent's
// place; 0 for a character the collation skips. The same on every system.
std::uint32_t collationWeight(char32_t c);

// Two UTF-8 texts in the collation's order (negative, 0, positive): first by the characters'
// places, a text that runs out first being the lower; then, when those are equal, by accents.
// Bytes that are not UTF-8 count as U+FFFD.
int compareCollated(const char* a, int lengthA, const char* b, int lengthB);

}  // namespace qivo::database
