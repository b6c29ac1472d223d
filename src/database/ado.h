#pragma once

#include <QByteArrayView>
#include <QHash>
#include <QSqlDatabase>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <array>
#include <memory>
#include <optional>
#include <vector>

#include "runtime/runtime_error.h"

class QSqlQuery;

namespace qivo::database {

class Engine;
class RowCursor;

// A write whose connection was lost before the server answered: whether it took effect is not
// known. The connection has been opened anew (or will be at the next action).
class ConnectionLost final : public runtime::RuntimeError {
  public:
    using RuntimeError::RuntimeError;
};

enum CursorType { adOpenForwardOnly = 0, adOpenKeyset = 1 };
enum LockType { adLockReadOnly = 1, adLockOptimistic = 3 };
// What a command must change to take effect.
enum ExecuteOption {
    adExecuteAll = 0,
    // Every statement must change a row: when one finds none, the whole command is undone. The
    // statements' own conditions then decide, at the moment they run, whether it goes ahead.
    adEveryStatementChanges = 1,
};

// The one database session. The data source decides the engine: "sqlite:PATH" is the embedded
// SQLite file PATH, anything else a SQL Server reached over ODBC. Errors are runtime::RuntimeError.
class AdoConnection final {
  public:
    AdoConnection();
    ~AdoConnection();
    AdoConnection(const AdoConnection&) = delete;
    AdoConnection& operator=(const AdoConnection&) = delete;

    QString ConnectionString;
    int ConnectionTimeout = 15;  // seconds, for the login
    int CommandTimeout = 30;     // seconds, 0 = no limit

    void Open();
    bool isOpen() const;

    // Runs a command text; several statements separated by white space run in order, as one
    // transaction: a failing statement leaves nothing of the batch behind. Returns the number of
    // rows the statements changed, 0 when the command was undone.
    qint64 Execute(const QString& sql, ExecuteOption option = adExecuteAll);

    // For Recordset and the tests of the engines. The database opens anew first when a failure
    // left the connection unusable.
    const Engine& engine() const;
    QSqlDatabase database();

  private:
    friend class Recordset;
    void requireOpen() const;
    bool recover();
    void recoverAfterWrite(const runtime::RuntimeError& error);

    std::unique_ptr<Engine> engine_;
    QString name_;
    bool reopenDue_ = false;
};

// A record set over one query. Forward-only read-only sets are for display; keyset optimistic
// sets select one row of one table (or none, for AddNew) and write back on Update with one
// parameterised INSERT or UPDATE, then read the stored row back.
class Recordset final {
  public:
    Recordset();
    ~Recordset();
    Recordset(const Recordset&) = delete;
    Recordset& operator=(const Recordset&) = delete;

    void Open(const QString& sql, AdoConnection& connection, CursorType cursor = adOpenForwardOnly,
              LockType lock = adLockReadOnly);

    // EOF is a macro of the C library, so the end test is spelled Eof().
    bool Eof() const;
    void MoveNext();

    // The current record's value of a field, found by name whatever its case ("Zh_id" finds
    // ZH_ID). Null is a null QVariant. A missing field is runtime::RuntimeError ItemNotFound.
    QVariant Fields(const QString& name) const;
    int fieldCount() const { return static_cast<int>(names_.size()); }
    QVariant field(int index) const;  // by position, for tools and tests
    // What fieldText(Fields(name)) gives, as the engine's own UTF-8 bytes where a read-only set's
    // engine holds the field as text or Null; valid until the record moves. Otherwise nothing.
    std::optional<QByteArrayView> fieldUtf8(const QString& name) const;
    // A field's position, found by name as Fields finds it, for reading it on every row of a
    // long list by position (field, fieldUtf8).
    int fieldPosition(const QString& name) const { return fieldIndex(name); }
    std::optional<QByteArrayView> fieldUtf8(int position) const;
    // A read-only set's field as a whole number where its engine holds it as one; otherwise
    // (Null, text, an updatable set) nothing.
    std::optional<qint64> fieldInteger(int position) const;

    void AddNew();
    void setField(const QString& name, const QVariant& value);  // null QVariant writes Null
    void Update();

  private:
    int fieldIndex(const QString& name) const;
    int lookUpField(const QString& name) const;
    void fetchNext();
    void requireRecord() const;
    // The cursor a read-only set's current record is read from; none for an updatable set.
    const RowCursor* readOnlyCursor() const;
    void save();
    // Runs inside the save's own work, which may be on a worker thread: it touches only what
    // it is given.
    void readBack(const Engine& engine, QSqlDatabase& db, const QString& keyColumn,
                  const QVariant& key);

    AdoConnection* connection_ = nullptr;
    std::unique_ptr<RowCursor> cursor_;
    QStringList names_;
    const QVariant& valueAt(int index) const;

    QHash<QString, int> exactIndex_;  // name as the database spells it -> column
    QHash<QString, int> index_;       // lower-case name -> column
    struct RecentName {
        QString name;
        int index = -1;
    };
    mutable std::array<RecentName, 16> recent_{};
    mutable std::size_t nextRecent_ = 0;
    // A read-only set converts a column of the current record when it is first read.
    mutable std::vector<QVariant> values_;
    mutable std::vector<char> loaded_;
    std::vector<bool> dirty_;
    std::vector<bool> dates_;  // columns the database declares as dates
    bool eof_ = true;
    bool updatable_ = false;
    bool adding_ = false;
    QString table_;
};

// The text a field shows: empty for Null, dates as yyyy-mm-dd (with the time when it has one).
QString fieldText(const QVariant& value);

// The same, but Null is runtime::RuntimeError InvalidUseOfNull (a value shown without a null
// guard).
QString requireText(const QVariant& value);

}  // namespace qivo::database
