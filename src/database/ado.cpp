#include "database/ado.h"

#include <QAtomicInt>
#include <QCoreApplication>
#include <QDate>
#include <QDateTime>
#include <QRegularExpression>

#include "database/engine.h"
#include "database/row_cursor.h"
#include "database/statement_wait.h"
#include "runtime/runtime_error.h"

namespace qivo::database {
namespace {

QString nextConnectionName() {
    static QAtomicInt counter;
    return QStringLiteral("qivo-%1").arg(counter.fetchAndAddRelaxed(1));
}

// The one table a keyset record set selects from.
QString tableOf(const QString& sql) {
    static const QRegularExpression from(QStringLiteral(R"(\bfrom\s+(\[[^\]]+\]|[^\s,;]+))"),
                                         QRegularExpression::CaseInsensitiveOption);
    const QRegularExpressionMatch match = from.match(sql);
    if (!match.hasMatch()) {
        throw runtime::RuntimeError(runtime::err::ProviderError,
                                    QStringLiteral("无法确定要更新的表：") + sql);
    }
    QString table = match.captured(1);
    if (table.startsWith(u'[')) {
        table = table.mid(1, table.size() - 2);
    }
    return table;
}

// What work gives, run as the engine runs statements the user may cancel.
template <class Result, class Work>
Result watched(const Engine& engine, Work work) {
    Result result;
    engine.run([&] { result = work(); });
    return result;
}

}  // namespace

AdoConnection::AdoConnection() = default;

AdoConnection::~AdoConnection() {
    // The shared connection lives until the process ends; by then Qt's registry is gone.
    if (name_.isEmpty() || !QCoreApplication::instance()) {
        return;
    }
    engine_->finishReading();
    QSqlDatabase::database(name_, false).close();
    QSqlDatabase::removeDatabase(name_);
}

void AdoConnection::Open() {
    const QMap<QString, QString> parts = parseConnectionString(ConnectionString);
    auto engine = engineFor(parts.value(QStringLiteral("data source")));
    const QString name = nextConnectionName();
    try {
        engine->open(name, parts, ConnectionTimeout);
    } catch (...) {
        QSqlDatabase::removeDatabase(name);
        throw;
    }
    const QString previous = name_;
    engine_ = std::move(engine);
    name_ = name;
    reopenDue_ = false;
    if (!previous.isEmpty()) {
        QSqlDatabase::database(previous, false).close();
        QSqlDatabase::removeDatabase(previous);
    }
}

bool AdoConnection::isOpen() const {
    return engine_ && QSqlDatabase::database(name_, false).isOpen();
}

void AdoConnection::requireOpen() const {
    if (!isOpen()) {
        throw runtime::RuntimeError(runtime::err::ObjectClosed,
                                    QStringLiteral("对象关闭时，不允许操作。"));
    }
}

const Engine& AdoConnection::engine() const {
    requireOpen();
    return *engine_;
}

QSqlDatabase AdoConnection::database() {
    if (reopenDue_) {
        Open();
    }
    requireOpen();
    engine_->finishReading();
    engine_->checkReachable();
    return QSqlDatabase::database(name_, false);
}

qint64 AdoConnection::Execute(const QString& sql, ExecuteOption option) {
    const QStringList statements = engine().statements(sql);
    try {
        QSqlDatabase db = database();
        return watched<qint64>(*engine_, [&] {
            return engine_->execute(db, statements, option == adEveryStatementChanges);
        });
    } catch (const runtime::RuntimeError& error) {
        recoverAfterWrite(error);
        throw;
    }
}

// After a failed command the connection must be back in autocommit with no transaction open,
// or every later batch would run outside a transaction. One that cannot be brought back is
// opened anew with the same settings: now, or at the next action while the server cannot be
// reached. Returns whether the connection had been lost.
bool AdoConnection::recover() {
    if (!engine_ || reopenDue_) {
        return false;
    }
    Engine::Standing standing;
    {
        QSqlDatabase db = QSqlDatabase::database(name_, false);
        standing = engine_->settle(db);
    }
    if (standing == Engine::Standing::Settled) {
        return false;
    }
    reopenDue_ = true;
    try {
        Open();
    } catch (const runtime::RuntimeError&) {
        // Still due: the next action tries again and reports why it cannot.
    }
    return standing == Engine::Standing::Lost;
}

// A write is never sent again: it may have taken effect before the connection went. One the
// user cancelled was rolled back before the cancel was answered, so nothing of it was kept.
void AdoConnection::recoverAfterWrite(const runtime::RuntimeError& error) {
    if (recover()) {
        throw ConnectionLost(error.number(),
                             QStringLiteral("与数据库的连接中断，已重新连接。刚才的更改是否已经保存"
                                            "无法确定，请核对后再操作。（") +
                                 error.description() + u'）');
    }
    if (error.number() == kCancelledError) {
        throw runtime::RuntimeError(kCancelledError,
                                    QStringLiteral("操作已被用户取消，刚才的更改没有保存。"));
    }
}

Recordset::Recordset() = default;
Recordset::~Recordset() = default;

void Recordset::Open(const QString& sql, AdoConnection& connection, CursorType cursor,
                     LockType lock) {
    // Until the new query runs the set has no current record, so a failed Open leaves none.
    eof_ = true;
    const QString statement = connection.engine().statements(sql).value(0);
    connection_ = &connection;
    updatable_ = cursor == adOpenKeyset && lock == adLockOptimistic;
    table_ = updatable_ ? tableOf(sql) : QString();
    adding_ = false;
    cursor_.reset();
    const auto select = [&] {
        QSqlDatabase db = connection.database();
        const Engine& engine = connection.engine();
        cursor_ = engine.query(db, statement);
    };
    try {
        select();
    } catch (const runtime::RuntimeError&) {
        // A read whose connection was lost runs once more, on the connection opened anew.
        if (!connection.recover()) {
            throw;
        }
        select();
    }
    names_ = cursor_->columnNames();
    dates_.clear();
    for (int i = 0; i < names_.size(); ++i) {
        dates_.push_back(cursor_->isDate(i));
    }
    recent_.fill({});
    nextRecent_ = 0;
    exactIndex_.clear();
    index_.clear();
    for (int i = 0; i < names_.size(); ++i) {
        exactIndex_.insert(names_[i], i);
        index_.insert(names_[i].toLower(), i);
    }
    values_.assign(names_.size(), QVariant());
    loaded_.assign(names_.size(), 1);
    dirty_.assign(names_.size(), false);
    fetchNext();
}

// A set being saved holds its whole record, so it can write it back after the read ends.
void Recordset::fetchNext() {
    eof_ = !cursor_ || !cursor_->next();
    if (eof_) {
        return;
    }
    loaded_.assign(values_.size(), 0);
    if (updatable_) {
        for (int i = 0; i < static_cast<int>(values_.size()); ++i) {
            valueAt(i);
        }
    }
}

const QVariant& Recordset::valueAt(int index) const {
    if (!loaded_[index]) {
        values_[index] = cursor_->value(index);
        loaded_[index] = 1;
    }
    return values_[index];
}

bool Recordset::Eof() const {
    return eof_;
}

void Recordset::MoveNext() {
    requireRecord();
    fetchNext();
}

void Recordset::requireRecord() const {
    if (eof_ && !adding_) {
        throw runtime::RuntimeError(
            runtime::err::NoCurrentRecord,
            QStringLiteral("BOF 或 EOF 中有一个是“真”，或者当前记录已被删除，"
                           "所需的操作要求一个当前的记录。"));
    }
}

int Recordset::fieldIndex(const QString& name) const {
    // A list fill asks for the same few names in the same order on every row, through the same
    // strings. An entry holds its string, so a matching address is that very text; the entry
    // after the one last asked for is tried first.
    const auto holds = [&name](const RecentName& recent) {
        return recent.index >= 0 && recent.name.constData() == name.constData() &&
               recent.name.size() == name.size();
    };
    std::size_t at = nextRecent_;
    if (!holds(recent_[at])) {
        at = 0;
        while (at < recent_.size() && !holds(recent_[at])) {
            ++at;
        }
        if (at == recent_.size()) {
            at = nextRecent_;
            recent_[at] = {name, lookUpField(name)};
        }
    }
    nextRecent_ = (at + 1) % recent_.size();
    return recent_[at].index;
}

int Recordset::lookUpField(const QString& name) const {
    if (const auto exact = exactIndex_.constFind(name); exact != exactIndex_.constEnd()) {
        return *exact;
    }
    const int index = index_.value(name.toLower(), -1);
    if (index < 0) {
        throw runtime::RuntimeError(runtime::err::ItemNotFound,
                                    QStringLiteral("在对应所需名称或序数的集合中，未找到项目。"));
    }
    return index;
}

QVariant Recordset::Fields(const QString& name) const {
    requireRecord();
    return valueAt(fieldIndex(name));
}

QVariant Recordset::field(int index) const {
    requireRecord();
    if (index < 0 || index >= static_cast<int>(values_.size())) {
        throw runtime::RuntimeError(runtime::err::ItemNotFound,
                                    QStringLiteral("在对应所需名称或序数的集合中，未找到项目。"));
    }
    return valueAt(index);
}

std::optional<QByteArrayView> Recordset::fieldUtf8(const QString& name) const {
    requireRecord();
    return fieldUtf8(fieldIndex(name));
}

std::optional<QByteArrayView> Recordset::fieldUtf8(int position) const {
    const RowCursor* cursor = readOnlyCursor();
    return cursor ? cursor->utf8(position) : std::nullopt;
}

std::optional<qint64> Recordset::fieldInteger(int position) const {
    const RowCursor* cursor = readOnlyCursor();
    return cursor ? cursor->integer(position) : std::nullopt;
}

const RowCursor* Recordset::readOnlyCursor() const {
    requireRecord();
    return updatable_ ? nullptr : cursor_.get();
}

void Recordset::AddNew() {
    if (!updatable_) {
        throw runtime::RuntimeError(runtime::err::ProviderError,
                                    QStringLiteral("当前记录集不支持更新。"));
    }
    cursor_.reset();
    adding_ = true;
    values_.assign(names_.size(), QVariant());
    loaded_.assign(names_.size(), 1);
    dirty_.assign(names_.size(), false);
}

void Recordset::setField(const QString& name, const QVariant& value) {
    requireRecord();
    if (!updatable_) {
        throw runtime::RuntimeError(runtime::err::ProviderError,
                                    QStringLiteral("当前记录集不支持更新。"));
    }
    const int index = fieldIndex(name);
    values_[index] = value;
    dirty_[index] = true;
}

void Recordset::Update() {
    requireRecord();
    if (!updatable_) {
        throw runtime::RuntimeError(runtime::err::ProviderError,
                                    QStringLiteral("当前记录集不支持更新。"));
    }
    try {
        save();
    } catch (const runtime::RuntimeError& error) {
        connection_->recoverAfterWrite(error);
        throw;
    }
}

void Recordset::save() {
    cursor_.reset();
    const Engine& engine = connection_->engine();
    QSqlDatabase db = connection_->database();
    QStringList columns;
    QVariantList values;
    for (int i = 0; i < static_cast<int>(names_.size()); ++i) {
        if (dirty_[i]) {
            columns << names_[i];
            values << (dates_[i] ? engine.dateValue(values_[i]) : values_[i]);
        }
    }
    // The write and the read-back of what it stored (a new row's key above all) are one unit:
    // a cancel undoes both, so the screen never misses a row the database keeps.
    engine.run([&] {
        engine.inTransaction(db, [&] {
            const QString keyColumn = engine.identityColumn(db, table_);
            QVariant key;
            if (adding_) {
                key = engine.insertRow(db, table_, columns, values);
            } else {
                key = values_[fieldIndex(keyColumn)];
                if (!columns.isEmpty()) {
                    engine.updateRow(db, table_, columns, values, keyColumn, key);
                }
            }
            readBack(engine, db, keyColumn, key);
            return true;
        });
    });
    adding_ = false;
}

// After a write the record shows what the database stored (converted dates, the new key).
void Recordset::readBack(const Engine& engine, QSqlDatabase& db, const QString& keyColumn,
                         const QVariant& key) {
    QStringList columns;
    for (const QString& name : names_) {
        columns << engine.quoteName(name);
    }
    // Keys are identities, whole numbers, so the text needs no parameter.
    const QString sql = QStringLiteral("select %1 from %2 where %3 = %4")
                            .arg(columns.join(u','), engine.quoteName(table_),
                                 engine.quoteName(keyColumn), QString::number(key.toLongLong()));
    cursor_ = engine.select(db, sql);
    dirty_.assign(names_.size(), false);
    fetchNext();
}

QString fieldText(const QVariant& value) {
    if (value.isNull()) {
        return {};
    }
    switch (value.typeId()) {
        case QMetaType::QDate:
            return value.toDate().toString(QStringLiteral("yyyy-MM-dd"));
        case QMetaType::QDateTime: {
            const QDateTime moment = value.toDateTime();
            return moment.time() == QTime(0, 0)
                       ? moment.date().toString(QStringLiteral("yyyy-MM-dd"))
                       : moment.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss"));
        }
        case QMetaType::Bool:
            return value.toBool() ? QStringLiteral("True") : QStringLiteral("False");
        default:
            return value.toString();
    }
}

QString requireText(const QVariant& value) {
    if (value.isNull()) {
        throw runtime::RuntimeError(runtime::err::InvalidUseOfNull,
                                    QStringLiteral("无效使用 Null"));
    }
    return fieldText(value);
}

}  // namespace qivo::database
