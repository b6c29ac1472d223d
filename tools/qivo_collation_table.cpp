// Writes src/database/sqlite/collation_table.cpp: the order of the embedded engine's text
// collation, taken once from ICU's Chinese collation (pinyin; case-insensitive, accents counted),
// so that the engine sorts alike on every system without asking the system's collator.
//   qivo-collation-table > src/database/sqlite/collation_table.cpp
#include <unicode/uchar.h>
#include <unicode/ucol.h>
#include <unicode/ucoleitr.h>
#include <unicode/uversion.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <string>
#include <utility>
#include <vector>

namespace {

// Blocks whose characters the table lists: Latin, punctuation, CJK symbols, Bopomofo, the
// unified ideographs and extension A, compatibility ideographs, full- and half-width forms.
constexpr std::pair<UChar32, UChar32> kBlocks[] = {
    {0x0001, 0x024F}, {0x2000, 0x206F}, {0x3000, 0x303F}, {0x3100, 0x312F},
    {0x3400, 0x4DBF}, {0x4E00, 0x9FFF}, {0xF900, 0xFAFF}, {0xFF00, 0xFFEF}};

struct Weight {
    uint64_t primary = 0;
    int secondary = 0;
};

// The collation elements of one character, long primaries joined with their continuation.
std::vector<Weight> weights(UCollator* collator, UChar32 c) {
    UChar text[2];
    int32_t length = 0;
    U16_APPEND_UNSAFE(text, length, c);
    UErrorCode status = U_ZERO_ERROR;
    UCollationElements* elements = ucol_openElements(collator, text, length, &status);
    std::vector<Weight> result;
    for (int32_t e = ucol_next(elements, &status); e != UCOL_NULLORDER;
         e = ucol_next(elements, &status)) {
        // 16 bits of primary, 8 of secondary, 8 of tertiary; a tertiary byte 11xxxxxx marks
        // the second half of a long primary.
        const auto element = static_cast<uint32_t>(e);
        if ((element & 0xC0) == 0xC0 && !result.empty()) {
            result.back().primary |= element >> 16;
        } else if (element != 0) {
            result.push_back(
                {uint64_t{element >> 16} << 16, static_cast<int>(element >> 8 & 0xFF)});
        }
    }
    ucol_closeElements(elements);
    return result;
}

std::string utf8(UChar32 c) {
    char bytes[4];
    int32_t length = 0;
    U8_APPEND_UNSAFE(bytes, length, c);
    std::string text(bytes, length);
    char escaped[12];
    if (c < 0x20 || c == 0x7F) {
        std::snprintf(escaped, sizeof escaped, "\\%03o", static_cast<unsigned>(c));
        return escaped;
    }
    if (c >= 0x80 && !u_isgraph(c)) {  // blanks and marks that no editor shows
        std::snprintf(escaped, sizeof escaped, "\\u%04X", static_cast<unsigned>(c));
        return escaped;
    }
    return c == '"' || c == '\\' ? "\\" + text : text;
}

// Columns an item takes in an editor: wide characters two, the rest one.
int columns(const std::string& item) {
    int result = 0;
    for (const char byte : item) {
        const auto b = static_cast<unsigned char>(byte);
        result += b < 0x80 ? 1 : b >= 0xE0 ? 2 : b >= 0xC0 ? 1 : 0;
    }
    return result;
}

void printPieces(const std::vector<std::string>& items) {
    std::string line;
    int width = 0;
    for (const std::string& item : items) {
        if (width + columns(item) > 84) {
            std::printf("    \"%s\",\n", line.c_str());
            line.clear();
            width = 0;
        }
        line += item;
        width += columns(item);
    }
    if (!line.empty()) {
        std::printf("    \"%s\",\n", line.c_str());
    }
}

}  // namespace

int main() {
    UErrorCode status = U_ZERO_ERROR;
    UCollator* collator = ucol_open("zh_CN", &status);
    if (U_FAILURE(status)) {
        std::fprintf(stderr, "no ICU collator for zh_CN: %s\n", u_errorName(status));
        return 1;
    }
    std::vector<UChar32> listed;
    std::vector<std::string> ignored;
    for (const auto& [first, last] : kBlocks) {
        for (UChar32 c = first; c <= last; ++c) {
            if (!u_isdefined(c)) {
                continue;
            }
            const std::vector<Weight> w = weights(collator, c);
            if (w.empty()) {
                ignored.push_back(utf8(c));
            } else if (w.size() == 1 && w[0].primary != 0) {
                listed.push_back(c);
            }
            // Expansions and secondary-only marks are left out: they sort after the table.
        }
    }
    // The collation elements hold weights before the locale's script order (Chinese before
    // Latin) is applied, so the order itself is taken from comparisons.
    UCollator* accents = ucol_open("zh_CN", &status);
    ucol_setStrength(collator, UCOL_PRIMARY);
    ucol_setStrength(accents, UCOL_SECONDARY);
    const auto compare = [](UCollator* by, UChar32 a, UChar32 b) {
        UChar textA[2];
        UChar textB[2];
        int32_t lengthA = 0;
        int32_t lengthB = 0;
        U16_APPEND_UNSAFE(textA, lengthA, a);
        U16_APPEND_UNSAFE(textB, lengthB, b);
        return ucol_strcoll(by, textA, lengthA, textB, lengthB);
    };
    std::stable_sort(listed.begin(), listed.end(),
                     [&](UChar32 a, UChar32 b) { return compare(accents, a, b) == UCOL_LESS; });
    std::vector<std::string> order;
    for (std::size_t i = 0; i < listed.size(); ++i) {
        std::string item = utf8(listed[i]);
        if (i > 0 && compare(collator, listed[i - 1], listed[i]) == UCOL_EQUAL) {
            item = (compare(accents, listed[i - 1], listed[i]) == UCOL_EQUAL ? "\\002" : "\\001") +
                   item;
        }
        order.push_back(item);
    }
    ucol_close(accents);
    UVersionInfo version;
    char versionText[U_MAX_VERSION_STRING_LENGTH];
    u_getVersion(version);
    u_versionToString(version, versionText);
    std::printf(
        "// Generated by tools/qivo_collation_table.cpp from ICU %s; not to be edited by hand.\n"
        "// clang-format off\n"
        "#include \"database/sqlite/collation_table.h\"\n\n"
        "#include <iterator>\n\n"
        "namespace qivo::database {\n\n"
        "const char* const kCollationIgnored[] = {\n",
        versionText);
    printPieces(ignored);
    std::printf("};\nconst int kCollationIgnoredPieces = int(std::size(kCollationIgnored));\n\n");
    std::printf("const char* const kCollationOrder[] = {\n");
    printPieces(order);
    std::printf(
        "};\nconst int kCollationOrderPieces = int(std::size(kCollationOrder));\n\n"
        "}  // namespace qivo::database\n");
    ucol_close(collator);
    return 0;
}
