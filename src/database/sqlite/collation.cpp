#include "database/sqlite/collation.h"

#include <cstring>
#include <vector>

#include "database/sqlite/collation_table.h"

namespace qivo::database {
namespace {

constexpr char32_t kReplacement = 0xFFFD;

// The next character of UTF-8 text; at the end, 0 without moving.
char32_t nextCharacter(const unsigned char*& at, const unsigned char* end) {
    if (at == end) {
        return 0;
    }
    const unsigned char lead = *at++;
    if (lead < 0x80) {
        return lead;
    }
    const int following = lead >= 0xF0 ? 3 : lead >= 0xE0 ? 2 : lead >= 0xC0 ? 1 : -1;
    if (following < 0 || end - at < following) {
        return kReplacement;
    }
    char32_t c = lead & (0x3F >> following);
    for (int i = 0; i < following; ++i) {
        if ((at[i] & 0xC0) != 0x80) {
            return kReplacement;
        }
        c = c << 6 | (at[i] & 0x3F);
    }
    at += following;
    return c;
}

struct Weights {
    std::vector<std::uint32_t> basic = std::vector<std::uint32_t>(0x10000, 0);
    std::uint32_t unlisted = 0;  // the first place after the listed characters
};

Weights buildWeights() {
    Weights w;
    std::vector<bool> known(0x10000, false);
    for (int piece = 0; piece < kCollationIgnoredPieces; ++piece) {
        const auto* at = reinterpret_cast<const unsigned char*>(kCollationIgnored[piece]);
        const auto* end = at + std::strlen(kCollationIgnored[piece]);
        while (at != end) {
            known[nextCharacter(at, end)] = true;
        }
    }
    std::uint32_t place = 0;
    std::uint32_t accent = 0;
    char32_t marker = 0;
    for (int piece = 0; piece < kCollationOrderPieces; ++piece) {
        const auto* at = reinterpret_cast<const unsigned char*>(kCollationOrder[piece]);
        const auto* end = at + std::strlen(kCollationOrder[piece]);
        while (at != end) {
            const char32_t c = nextCharacter(at, end);
            if (c == 1 || c == 2) {
                marker = c;
                continue;
            }
            if (marker == 0) {
                ++place;
                accent = 0;
            } else if (marker == 1) {
                ++accent;
            }
            marker = 0;
            w.basic[c] = place << 8 | accent;
            known[c] = true;
        }
    }
    w.unlisted = place + 1;
    for (char32_t c = 0; c < 0x10000; ++c) {
        if (!known[c]) {
            w.basic[c] = (w.unlisted + c) << 8;
        }
    }
    return w;
}

const Weights& weights() {
    static const Weights w = buildWeights();
    return w;
}

// Compares the texts' weights, skipping those of ignored characters, with the given mask
// (the place alone, or place and accent).
int compareWeights(const char* a, int lengthA, const char* b, int lengthB, std::uint32_t mask) {
    const auto* atA = reinterpret_cast<const unsigned char*>(a);
    const auto* atB = reinterpret_cast<const unsigned char*>(b);
    const auto* endA = atA + lengthA;
    const auto* endB = atB + lengthB;
    for (;;) {
        std::uint32_t wa = 0;
        while (wa == 0 && atA != endA) {
            wa = collationWeight(nextCharacter(atA, endA)) & mask;
        }
        std::uint32_t wb = 0;
        while (wb == 0 && atB != endB) {
            wb = collationWeight(nextCharacter(atB, endB)) & mask;
        }
        if (wa != wb) {
            return wa < wb ? -1 : 1;
        }
        if (wa == 0) {
            return 0;
        }
    }
}

}  // namespace

std::uint32_t collationWeight(char32_t c) {
    const Weights& w = weights();
    return c < 0x10000 ? w.basic[c] : (w.unlisted + c) << 8;
}

int compareCollated(const char* a, int lengthA, const char* b, int lengthB) {
    const int byPlace = compareWeights(a, lengthA, b, lengthB, ~0xFFu);
    return byPlace != 0 ? byPlace : compareWeights(a, lengthA, b, lengthB, ~0u);
}

}  // namespace qivo::database
