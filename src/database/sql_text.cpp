#include "database/sql_text.h"

#include <QList>

namespace qivo::database {
namespace {

// A lexical piece of a statement: quoted text, a word, white space or one other character.
struct Token {
    enum Kind { Quoted, Word, Space, Symbol } kind;
    QString text;
};

bool isWordChar(QChar c) {
    return c.isLetterOrNumber() || c == u'_' || c == u'@' || c == u'#';
}

QList<Token> tokenize(const QString& sql) {
    QList<Token> tokens;
    const qsizetype n = sql.size();
    qsizetype i = 0;
    while (i < n) {
        const QChar c = sql[i];
        qsizetype j = i + 1;
        Token::Kind kind = Token::Symbol;
        if (c == u'\'' || c == u'"' || c == u'[') {
            const QChar close = c == u'[' ? QChar(u']') : c;
            while (j < n) {
                if (sql[j] == close) {
                    // A doubled closing quote is an escaped quote inside the text.
                    if (j + 1 < n && sql[j + 1] == close) {
                        j += 2;
                        continue;
                    }
                    ++j;
                    break;
                }
                ++j;
            }
            kind = Token::Quoted;
        } else if (c.isSpace()) {
            while (j < n && sql[j].isSpace()) {
                ++j;
            }
            kind = Token::Space;
        } else if (isWordChar(c)) {
            while (j < n && isWordChar(sql[j])) {
                ++j;
            }
            kind = Token::Word;
        }
        tokens.append({kind, sql.mid(i, j - i)});
        i = j;
    }
    return tokens;
}

bool isWord(const Token& token, const char* word) {
    return token.kind == Token::Word &&
           token.text.compare(QLatin1String(word), Qt::CaseInsensitive) == 0;
}

bool startsStatement(const Token& token) {
    return isWord(token, "delete") || isWord(token, "update") || isWord(token, "insert");
}

// The nearest token before (step -1) or after (step +1) index that is not white space.
const Token* neighbour(const QList<Token>& tokens, qsizetype index, int step) {
    for (qsizetype k = index + step; k >= 0 && k < tokens.size(); k += step) {
        if (tokens[k].kind != Token::Space) {
            return &tokens[k];
        }
    }
    return nullptr;
}

bool endsText(const Token* token) {
    return token &&
           (token->text == u")" || (token->kind == Token::Quoted && token->text.startsWith(u'\'')));
}

bool beginsText(const Token* token) {
    return token &&
           (token->text == u"(" || (token->kind == Token::Quoted && token->text.startsWith(u'\'')));
}

}  // namespace

QStringList splitStatements(const QString& sql) {
    QStringList statements;
    QString current;
    int depth = 0;
    bool afterSpace = false;
    auto flush = [&] {
        const QString statement = current.trimmed();
        if (!statement.isEmpty()) {
            statements.append(statement);
        }
        current.clear();
    };
    for (const Token& token : tokenize(sql)) {
        // Parentheses and case/begin ... end blocks nest; nothing inside them splits.
        if (token.text == u"(" || isWord(token, "case") || isWord(token, "begin")) {
            ++depth;
        } else if (token.text == u")" || isWord(token, "end")) {
            --depth;
        }
        if (depth == 0 && token.text == u";") {
            flush();
            continue;
        }
        // In "create trigger ... before delete" the keyword belongs to the definition.
        const bool definition =
            current.trimmed().startsWith(QLatin1String("create"), Qt::CaseInsensitive);
        if (depth == 0 && afterSpace && startsStatement(token) && !definition &&
            !current.trimmed().isEmpty()) {
            flush();
        }
        afterSpace = token.kind == Token::Space;
        current += token.text;
    }
    flush();
    return statements;
}

QString translateForSqlite(const QString& statement) {
    const QList<Token> tokens = tokenize(statement);
    QString out;
    out.reserve(statement.size() + 16);
    bool first = true;
    for (qsizetype i = 0; i < tokens.size(); ++i) {
        const Token& token = tokens[i];
        if (first && token.kind != Token::Space) {
            first = false;
            out += token.text;
            const Token* next = neighbour(tokens, i, +1);
            if (isWord(token, "delete") && next && !isWord(*next, "from")) {
                out += QStringLiteral(" From");
            }
            continue;
        }
        if (token.text == u"+" && endsText(neighbour(tokens, i, -1)) &&
            beginsText(neighbour(tokens, i, +1))) {
            out += QStringLiteral("||");
            continue;
        }
        out += token.text;
    }
    return out;
}

qsizetype serverTextLength(const QString& text, bool wide) {
    qsizetype length = text.size();
    if (!wide) {
        for (const QChar c : text) {
            length += c.unicode() >= 0x80 && !c.isSurrogate() ? 1 : 0;
        }
    }
    return length;
}

}  // namespace qivo::database
