#include "runtime/ini_file.h"

#include <QList>
#include <optional>

namespace qivo::runtime {
namespace {

const QByteArray kByteOrderMark = QByteArrayLiteral("\xEF\xBB\xBF");

// One line of the file without its line break; the first line without a byte-order mark.
struct Line {
    QString text;
    qsizetype end = 0;  // offset of the line's break (or of the end of the file)
};

QList<Line> linesOf(const QByteArray& file) {
    QList<Line> lines;
    qsizetype start = file.startsWith(kByteOrderMark) ? kByteOrderMark.size() : 0;
    while (start < file.size()) {
        qsizetype end = file.indexOf('\n', start);
        if (end < 0) {
            end = file.size();
        }
        QByteArray bytes = file.mid(start, end - start);
        if (bytes.endsWith('\r')) {
            bytes.chop(1);
        }
        lines.append({QString::fromUtf8(bytes), end});
        start = end + 1;
    }
    return lines;
}

std::optional<QString> sectionName(const QString& line) {
    const QString trimmed = line.trimmed();
    if (trimmed.startsWith(u'[') && trimmed.endsWith(u']')) {
        return trimmed.mid(1, trimmed.size() - 2).trimmed();
    }
    return std::nullopt;
}

bool sameName(const QString& a, const QString& b) {
    return a.compare(b, Qt::CaseInsensitive) == 0;
}

bool isKeyLine(const QString& line, const QString& key) {
    const qsizetype eq = line.indexOf(u'=');
    return eq > 0 && sameName(line.left(eq).trimmed(), key);
}

// The lines of the section, as indices into lines; empty when the section is missing.
struct SectionSpan {
    qsizetype header = -1;
    qsizetype last = -1;  // the last line of the section that is not blank
};

SectionSpan findSection(const QList<Line>& lines, const QString& section) {
    SectionSpan span;
    for (qsizetype i = 0; i < lines.size(); ++i) {
        if (const auto name = sectionName(lines[i].text)) {
            if (span.header >= 0) {
                break;
            }
            if (sameName(*name, section)) {
                span.header = span.last = i;
            }
        } else if (span.header >= 0 && !lines[i].text.trimmed().isEmpty()) {
            span.last = i;
        }
    }
    return span;
}

}  // namespace

QString iniValue(const QByteArray& file, const QString& section, const QString& key) {
    const QList<Line> lines = linesOf(file);
    const SectionSpan span = findSection(lines, section);
    for (qsizetype i = span.header + 1; span.header >= 0 && i <= span.last; ++i) {
        if (isKeyLine(lines[i].text, key)) {
            return lines[i].text.mid(lines[i].text.indexOf(u'=') + 1);
        }
    }
    return {};
}

QByteArray withIniValue(const QByteArray& file, const QString& section, const QString& key,
                        const QString& value) {
    const QList<Line> lines = linesOf(file);
    const QByteArray lineBreak = file.contains("\r\n") ? "\r\n" : "\n";
    const QByteArray entry = (key + u'=' + value).toUtf8();
    const SectionSpan span = findSection(lines, section);
    if (span.header < 0) {
        QByteArray result = file;
        if (!result.isEmpty() && !result.endsWith('\n')) {
            result += lineBreak;
        }
        return result + '[' + section.toUtf8() + ']' + lineBreak + entry + lineBreak;
    }
    for (qsizetype i = span.header + 1; i <= span.last; ++i) {
        if (isKeyLine(lines[i].text, key)) {
            const qsizetype start = lines[i - 1].end + 1;
            qsizetype end = lines[i].end;
            if (end > start && file[end - 1] == '\r') {
                --end;
            }
            return file.left(start) + entry + file.mid(end);
        }
    }
    const qsizetype after = lines[span.last].end;
    if (after >= file.size()) {
        return file + lineBreak + entry + lineBreak;
    }
    return file.left(after + 1) + entry + lineBreak + file.mid(after + 1);
}

}  // namespace qivo::runtime
