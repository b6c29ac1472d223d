#include "database/sqlite/sqlite_engine.h"

#include <sqlite3.h>

#include <QFileInfo>
#include <QSqlDriver>
#include <QSqlError>
#include <QSqlQuery>

#include "database/sql_text.h"
#include "database/sqlite/sqlite_cursor.h"
#include "database/sqlite/sqlite_functions.h"
#include "runtime/runtime_error.h"

namespace qivo::database {

QString dateConversionMessage() {
    return QStringLiteral("从字符串转换日期和/或时间时，转换失败。");
}

QString truncationMessage() {
    return QStringLiteral("将截断字符串或二进制数据。");
}

namespace {

sqlite3* handleOf(QSqlDatabase& db) {
    const QVariant handle = db.driver()->handle();
    return handle.isValid() ? *static_cast<sqlite3* const*>(handle.constData()) : nullptr;
}

}  // namespace

// How long a statement waits for a lock another program holds on the file.
constexpr int kBusyTimeoutMs = 5000;

QSqlDatabase SqliteEngine::open(const QString& name, const QMap<QString, QString>&, int) const {
    checkReachable();
    QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
    db.setDatabaseName(path_);
    if (!db.open()) {
        throwSqlError(db.lastError());
    }
    sqlite3* sqlite = handleOf(db);
    if (!sqlite || !registerSqliteFunctions(sqlite)) {
        throw runtime::RuntimeError(runtime::err::ProviderError,
                                    QStringLiteral("无法初始化嵌入式数据库。"));
    }
    watch_ = std::make_unique<SqliteWatch>(sqlite, kBusyTimeoutMs);
    // A file that is not a database fails here rather than at the first screen.
    QSqlQuery probe(db);
    if (!probe.exec(QStringLiteral("select count(*) from sqlite_master"))) {
        throwSqlError(probe.lastError());
    }
    return db;
}

std::unique_ptr<RowCursor> SqliteEngine::select(QSqlDatabase& db, const QString& sql) const {
    return std::make_unique<SqliteCursor>(handleOf(db), sql, *watch_);
}

void SqliteEngine::run(const std::function<void()>& work) const {
    watch_->run(work);
}

QStringList SqliteEngine::statements(const QString& sql) const {
    QStringList result = splitStatements(sql);
    for (QString& statement : result) {
        statement = translateForSqlite(statement);
    }
    return result;
}

QString SqliteEngine::identityColumn(QSqlDatabase& db, const QString& table) const {
    QSqlQuery query(db);
    if (!query.exec(QStringLiteral("select name from pragma_table_info(%1) where pk = 1")
                        .arg(quoteName(table).replace(u'"', u'\'')))) {
        throwSqlError(query.lastError());
    }
    return query.next() ? query.value(0).toString() : QString();
}

QVariant SqliteEngine::insertRow(QSqlDatabase& db, const QString& table, const QStringList& columns,
                                 const QVariantList& values) const {
    QStringList names;
    for (const QString& column : columns) {
        names << quoteName(column);
    }
    const QString sql = columns.isEmpty()
                            ? QStringLiteral("insert into %1 default values").arg(quoteName(table))
                            : QStringLiteral("insert into %1 (%2) values (%3)")
                                  .arg(quoteName(table), names.join(u','),
                                       QStringList(columns.size(), QStringLiteral("?")).join(u','));
    QSqlQuery query(db);
    if (!query.prepare(sql)) {
        throwSqlError(query.lastError());
    }
    for (const QVariant& value : values) {
        query.addBindValue(value);
    }
    if (!query.exec()) {
        throwSqlError(query.lastError());
    }
    return query.lastInsertId();
}

void SqliteEngine::updateRow(QSqlDatabase& db, const QString& table, const QStringList& columns,
                             const QVariantList& values, const QString& keyColumn,
                             const QVariant& key) const {
    QSqlQuery update(db);
    update.prepare(updateStatement(table, columns, keyColumn));
    for (const QVariant& value : values) {
        update.addBindValue(value);
    }
    update.addBindValue(key);
    if (!update.exec()) {
        throwSqlError(update.lastError());
    }
}

namespace {

void execOrThrow(QSqlQuery& query, const QString& sql) {
    if (!query.exec(sql)) {
        throwSqlError(query.lastError());
    }
}

}  // namespace

qint64 SqliteEngine::executeStatement(QSqlDatabase& db, const QString& statement) const {
    QSqlQuery query(db);
    execOrThrow(query, statement);
    return query.numRowsAffected();
}

bool SqliteEngine::transactionOpen(QSqlDatabase& db) const {
    return !sqlite3_get_autocommit(handleOf(db));
}

void SqliteEngine::commitStarting() const {
    if (watch_->cancelled()) {
        throwCancelled();
    }
}

// An absent file is a wrong setting or a lost database, never a new empty one; and SQLite would
// go on writing into a file removed under an open connection, losing every change.
void SqliteEngine::checkReachable() const {
    if (!QFileInfo(path_).isFile()) {
        throw runtime::RuntimeError(
            runtime::err::ProviderError,
            QStringLiteral("无法打开数据库文件“%1”：文件不存在。").arg(path_));
    }
}

Engine::Standing SqliteEngine::settle(QSqlDatabase& db) const {
    sqlite3* sqlite = handleOf(db);
    if (!sqlite3_get_autocommit(sqlite)) {
        sqlite3_exec(sqlite, "rollback", nullptr, nullptr, nullptr);
    }
    return sqlite3_get_autocommit(sqlite) ? Standing::Settled : Standing::Unsettled;
}

QString SqliteEngine::quoteName(const QString& name) const {
    return u'"' + QString(name).replace(u'"', QStringLiteral("\"\"")) + u'"';
}

}  // namespace qivo::database
