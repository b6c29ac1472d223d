#include "runtime/blanks.h"

namespace qivo::runtime {

QString trimBlanks(const QString& text) {
    qsizetype first = 0;
    qsizetype end = text.size();
    while (first < end && text[first] == u' ') {
        ++first;
    }
    while (end > first && text[end - 1] == u' ') {
        --end;
    }
    return text.mid(first, end - first);
}

}  // namespace qivo::runtime
