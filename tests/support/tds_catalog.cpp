#include "support/tds_catalog.h"

#include <sqlite3.h>

#include <QRegularExpression>

#include "support/tds_results.h"

namespace qivo::test::tds {
namespace {

QString textOf(sqlite3_value* value) {
    return QString::fromUtf8(reinterpret_cast<const char*>(sqlite3_value_text(value)),
                             sqlite3_value_bytes(value));
}

void resultText(sqlite3_context* context, const QString& text) {
    const QByteArray utf8 = text.toUtf8();
    sqlite3_result_text(context, utf8.constData(), int(utf8.size()), SQLITE_TRANSIENT);
}

void replicate(sqlite3_context* context, int, sqlite3_value** values) {
    resultText(context, textOf(values[0]).repeated(qMax(0, sqlite3_value_int(values[1]))));
}

// A table's object id is its name, without brackets or owner.
void objectId(sqlite3_context* context, int, sqlite3_value** values) {
    QString name = textOf(values[0]).remove(u'[').remove(u']');
    if (name.startsWith(QStringLiteral("dbo."), Qt::CaseInsensitive)) {
        name.remove(0, 4);
    }
    resultText(context, name);
}

void hasPermission(sqlite3_context* context, int, sqlite3_value**) {
    sqlite3_result_int(context, 1);
}

void typeName(sqlite3_context* context, int, sqlite3_value** values) {
    resultText(context, serverType(textOf(values[0]), textOf(values[1])).name);
}

void typeLength(sqlite3_context* context, int, sqlite3_value** values) {
    const QVariant length = serverType(textOf(values[0]), textOf(values[1])).length;
    if (length.isNull()) {
        sqlite3_result_null(context);
    } else {
        sqlite3_result_int(context, length.toInt());
    }
}

constexpr const char* kViews = R"(
create temp view "sys.identity_columns" as
  select m.name as object_id, p.name as name from main.sqlite_master m
  join pragma_table_info(m.name) p where m.type = 'table' and p.pk = 1 and p.type like 'INTEGER%';
create temp view "sys.triggers" as
  select name, tbl_name as parent_id from main.sqlite_master
  where type = 'trigger' and sql not like '%qivo_date(%';
create temp view "sys.syslanguages" as
  select 'us_english' as name, 'English' as alias, 'mdy' as dateformat
  union all select 'british', 'British English', 'dmy'
  union all select '简体中文', 'Simplified Chinese', 'ymd';
create temp view "INFORMATION_SCHEMA.COLUMNS" as
  select m.name as TABLE_NAME, p.name as COLUMN_NAME, qivo_type_name(p.name, p.type) as DATA_TYPE,
         qivo_type_length(p.name, p.type) as CHARACTER_MAXIMUM_LENGTH
  from main.sqlite_master m join pragma_table_info(m.name) p where m.type = 'table';
)";

}  // namespace

void addCatalog(sqlite3* db) {
    const struct {
        const char* name;
        int arguments;
        void (*function)(sqlite3_context*, int, sqlite3_value**);
    } functions[] = {{"replicate", 2, replicate},
                     {"object_id", 1, objectId},
                     {"has_perms_by_name", 3, hasPermission},
                     {"qivo_type_name", 2, typeName},
                     {"qivo_type_length", 2, typeLength}};
    for (const auto& f : functions) {
        sqlite3_create_function(db, f.name, f.arguments, SQLITE_UTF8, nullptr, f.function, nullptr,
                                nullptr);
    }
    sqlite3_exec(db, kViews, nullptr, nullptr, nullptr);
}

QString embeddedForms(const QString& statement) {
    static const QRegularExpression catalogName(R"(\b(sys|INFORMATION_SCHEMA)\.(\w+))",
                                                QRegularExpression::CaseInsensitiveOption);
    QString out;
    bool quoted = false;
    for (qsizetype i = 0; i < statement.size(); ++i) {
        const QChar c = statement[i];
        const bool wordBefore = i > 0 && (statement[i - 1].isLetterOrNumber() ||
                                          statement[i - 1] == u'_' || statement[i - 1] == u'@');
        if (c == u'\'') {
            quoted = !quoted;
        } else if (!quoted && (c == u'N' || c == u'n') && statement.mid(i + 1, 1) == u"'" &&
                   !wordBefore) {
            continue;  // N'...' is a plain literal here: every text is Unicode
        }
        out += c;
    }
    out.replace(catalogName, QStringLiteral("\"\\1.\\2\""));
    out.replace(QStringLiteral("@@language"), QStringLiteral("'us_english'"), Qt::CaseInsensitive);
    out.replace(QStringLiteral("scope_identity()"), QStringLiteral("last_insert_rowid()"),
                Qt::CaseInsensitive);
    return out;
}

}  // namespace qivo::test::tds
