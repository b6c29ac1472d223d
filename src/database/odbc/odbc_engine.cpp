#include "database/odbc/odbc_engine.h"

#include <QSqlDriver>
#include <QSqlError>

#include "database/dates.h"
#include "database/odbc/odbc_connection_string.h"
#include "database/odbc/odbc_driver.h"
#include "database/odbc/odbc_statement.h"
#include "database/odbc/odbc_stream.h"
#include "database/odbc/odbc_wait.h"
#include "database/row_cursor.h"
#include "database/sql_text.h"
#include "runtime/runtime_error.h"

namespace qivo::database {

QSqlDatabase OdbcEngine::open(const QString& name, const QMap<QString, QString>& parts,
                              int loginTimeout) const {
    QSqlDatabase db = QSqlDatabase::addDatabase(new OdbcDriver(loginTimeout), name);
    db.setDatabaseName(odbcConnectionString(parts, odbcDriverName()));
    if (!db.open()) {
        throwSqlError(db.lastError());
    }
    return db;
}

QStringList OdbcEngine::statements(const QString& sql) const {
    return splitStatements(sql);
}

namespace {

// The ODBC connection handle under Qt's connection: statements go straight to it.
void* connectionHandle(QSqlDatabase& db) {
    const QVariant handle = db.driver()->handle();
    return *static_cast<void* const*>(handle.constData());
}

bool utf8Text(QSqlDatabase& db) {
    return static_cast<const OdbcDriver*>(db.driver())->textArrivesAsUtf8();
}

}  // namespace

std::unique_ptr<RowCursor> OdbcEngine::select(QSqlDatabase& db, const QString& sql) const {
    OdbcStatement statement(connectionHandle(db));
    statement.execute(sql);
    return std::make_unique<OdbcCursor>(statement.readAll(utf8Text(db)));
}

std::unique_ptr<RowCursor> OdbcEngine::query(QSqlDatabase& db, const QString& sql) const {
    if (inOdbcWork()) {
        return select(db, sql);
    }
    auto stream = std::make_unique<OdbcStream>(connectionHandle(db), sql, utf8Text(db));
    reading_ = stream->task();
    return stream;
}

void OdbcEngine::finishReading() const {
    if (reading_) {
        reading_->settle();
        reading_.reset();
    }
}

OdbcEngine::~OdbcEngine() {
    finishReading();
}

qint64 OdbcEngine::executeStatement(QSqlDatabase& db, const QString& sql) const {
    OdbcStatement statement(connectionHandle(db));
    statement.execute(sql);
    statement.readAll(utf8Text(db));
    return statement.rowsChanged();
}

bool OdbcEngine::transactionOpen(QSqlDatabase& db) const {
    return !autocommitOn(connectionHandle(db));
}

void OdbcEngine::commitStarting() const {
    database::commitStarting();
}

// A connection that cannot answer how many transactions it holds is as good as lost.
Engine::Standing OdbcEngine::settle(QSqlDatabase& db) const {
    finishReading();
    void* connection = connectionHandle(db);
    if (connectionDead(connection)) {
        return Standing::Lost;
    }
    if (!autocommitRestored(connection)) {
        return Standing::Unsettled;
    }
    try {
        return openTransactions(connection) == 0 ? Standing::Settled : Standing::Unsettled;
    } catch (const runtime::RuntimeError&) {
        return Standing::Lost;
    }
}

QString OdbcEngine::identityColumn(QSqlDatabase& db, const QString& table) const {
    OdbcStatement statement(connectionHandle(db));
    statement.execute(
        QStringLiteral("select name from sys.identity_columns where object_id = object_id(?)"),
        {table});
    const OdbcRows rows = statement.readAll(utf8Text(db));
    return rows.rowCount() == 0 ? QString() : rows.value(0, 0).toString();
}

QVariant OdbcEngine::insertRow(QSqlDatabase& db, const QString& table, const QStringList& columns,
                               const QVariantList& values) const {
    QStringList names;
    for (const QString& column : columns) {
        names << quoteName(column);
    }
    // The identity is read in the same batch: SCOPE_IDENTITY is not affected by triggers.
    const QString insert =
        columns.isEmpty() ? QStringLiteral("insert into %1 default values").arg(quoteName(table))
                          : QStringLiteral("insert into %1 (%2) values (%3)")
                                .arg(quoteName(table), names.join(u','),
                                     QStringList(columns.size(), QStringLiteral("?")).join(u','));
    OdbcStatement statement(connectionHandle(db));
    statement.execute(
        QStringLiteral("set nocount on; %1; select cast(scope_identity() as int)").arg(insert),
        values);
    const OdbcRows rows = statement.readAll(utf8Text(db));
    return rows.rowCount() == 0 ? QVariant() : rows.value(0, 0);
}

void OdbcEngine::updateRow(QSqlDatabase& db, const QString& table, const QStringList& columns,
                           const QVariantList& values, const QString& keyColumn,
                           const QVariant& key) const {
    OdbcStatement statement(connectionHandle(db));
    statement.execute(updateStatement(table, columns, keyColumn), values + QVariantList{key});
    statement.readAll(utf8Text(db));
}

// Typed dates go out as yyyymmdd, which SQL Server reads the same under every login language;
// other text goes unchanged, so the server still refuses what is not a date.
QVariant OdbcEngine::dateValue(const QVariant& typed) const {
    if (typed.typeId() != QMetaType::QString) {
        return typed;
    }
    const std::optional<QString> iso = normalizeDate(typed.toString());
    if (!iso) {
        return typed;
    }
    return QString(*iso).remove(u'-');
}

void OdbcEngine::run(const std::function<void()>& work) const {
    runOdbcWork(work);
}

QString OdbcEngine::quoteName(const QString& name) const {
    return u'[' + QString(name).replace(u']', QStringLiteral("]]")) + u']';
}

}  // namespace qivo::database
