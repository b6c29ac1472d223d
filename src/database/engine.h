#pragma once

#include <QMap>
#include <QSqlDatabase>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <functional>
#include <memory>

class QSqlQuery;

namespace qivo::database {

class RowCursor;

// The parts of an ADO-style connection string ("Key=Value;..."), keys in lower case, the catalog
// and data source without their single quotes; a value may hold ';' (see engine.cpp).
QMap<QString, QString> parseConnectionString(const QString& connectionString);

// What differs between the two database engines.
class Engine {
  public:
    virtual ~Engine() = default;

    // Opens the database under the given Qt connection name; throws runtime::RuntimeError on
    // failure.
    virtual QSqlDatabase open(const QString& name, const QMap<QString, QString>& parts,
                              int loginTimeout) const = 0;

    // The statements to run for one command text, in order, in this engine's dialect.
    virtual QStringList statements(const QString& sql) const = 0;

    // The identity column of a table, for writing back and reading back a saved row.
    virtual QString identityColumn(QSqlDatabase& db, const QString& table) const = 0;

    // Runs a prepared INSERT (columns bound in order) and returns the identity it assigned.
    virtual QVariant insertRow(QSqlDatabase& db, const QString& table, const QStringList& columns,
                               const QVariantList& values) const = 0;

    // Sets the given columns of the row whose key column holds key.
    virtual void updateRow(QSqlDatabase& db, const QString& table, const QStringList& columns,
                           const QVariantList& values, const QString& keyColumn,
                           const QVariant& key) const = 0;

    // Runs a command's statements in order, as one transaction. Returns the rows they changed
    // together. With eachMustChange a statement that changes no row undoes the transaction, and
    // the answer is 0.
    qint64 execute(QSqlDatabase& db, const QStringList& statements,
                   bool eachMustChange = false) const;

    // Runs work as one transaction: kept when it returns true, undone when it returns false or
    // throws. A cancel of the statement wait can only undo it: once the user has cancelled,
    // nothing is committed, so a cancelled write is never a stored one. Inside a transaction
    // already open the work joins it, and the one who opened it commits or undoes it.
    bool inTransaction(QSqlDatabase& db, const std::function<bool()>& work) const;

    // Runs one statement and returns the rows it changed.
    virtual qint64 executeStatement(QSqlDatabase& db, const QString& statement) const = 0;

    // The value to send for text typed into a date column.
    virtual QVariant dateValue(const QVariant& typed) const { return typed; }

    virtual QString quoteName(const QString& name) const = 0;
    // Runs one query for reading its rows in order.
    virtual std::unique_ptr<RowCursor> select(QSqlDatabase& db, const QString& sql) const = 0;
    // Runs one query as run runs work, for reading its rows in order. The rows may still be
    // arriving while the first are read: until finishReading, nothing else uses the connection.
    virtual std::unique_ptr<RowCursor> query(QSqlDatabase& db, const QString& sql) const;
    // Waits until a query's rows still arriving have all arrived, so the connection is free.
    virtual void finishReading() const {}

    // Throws when the database can no longer be reached by this connection.
    virtual void checkReachable() const {}

    // Runs work that talks to the database (the calls above) so that a statement still running
    // after a moment shows the statement wait, and the user can cancel it there.
    virtual void run(const std::function<void()>& work) const = 0;

    // How a connection stands after a failed command, once settle has tried to bring it back to
    // autocommit with no transaction open.
    enum class Standing { Settled, Unsettled, Lost };
    virtual Standing settle(QSqlDatabase& db) const = 0;

  protected:
    // Whether a transaction is open on the connection.
    virtual bool transactionOpen(QSqlDatabase& db) const = 0;
    // The work of a transaction is about to be committed: after the user's cancel this throws
    // the cancelled error instead.
    virtual void commitStarting() const = 0;

    // "update <table> set <column> = ?, ... where <key column> = ?" in this engine's quoting.
    QString updateStatement(const QString& table, const QStringList& columns,
                            const QString& keyColumn) const;
};

// "sqlite:PATH" is the embedded engine, anything else SQL Server over ODBC.
bool isEmbedded(const QString& dataSource);
std::unique_ptr<Engine> engineFor(const QString& dataSource);

// Turns a failed Qt SQL call into the runtime::RuntimeError the screens see.
[[noreturn]] void throwSqlError(const class QSqlError& error);

}  // namespace qivo::database
