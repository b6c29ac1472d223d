#pragma once

#include "database/engine.h"
#include "database/sqlite/sqlite_watch.h"

namespace qivo::database {

// The embedded engine: a SQLite file, with the functions, collation and date handling that
// make it answer the program's SQL Server texts as SQL Server does.
class SqliteEngine final : public Engine {
  public:
    explicit SqliteEngine(QString path) : path_(std::move(path)) {}

    QSqlDatabase open(const QString& name, const QMap<QString, QString>& parts,
                      int loginTimeout) const override;
    QStringList statements(const QString& sql) const override;
    QString identityColumn(QSqlDatabase& db, const QString& table) const override;
    QVariant insertRow(QSqlDatabase& db, const QString& table, const QStringList& columns,
                       const QVariantList& values) const override;
    void updateRow(QSqlDatabase& db, const QString& table, const QStringList& columns,
                   const QVariantList& values, const QString& keyColumn,
                   const QVariant& key) const override;
    qint64 executeStatement(QSqlDatabase& db, const QString& statement) const override;
    Standing settle(QSqlDatabase& db) const override;
    QString quoteName(const QString& name) const override;
    void checkReachable() const override;
    std::unique_ptr<RowCursor> select(QSqlDatabase& db, const QString& sql) const override;
    void run(const std::function<void()>& work) const override;

  protected:
    bool transactionOpen(QSqlDatabase& db) const override;
    void commitStarting() const override;

  private:
    QString path_;
    // Made when the connection opens; it belongs to the connection's handle.
    mutable std::unique_ptr<SqliteWatch> watch_;
};

// The collation every text column of the embedded schema uses.
inline constexpr const char* kTextCollation = "Chinese_PRC_CI_AS";

// The message a date column gives for text that is not a date.
QString dateConversionMessage();
// The message a text column gives for text longer than it, and the number SQL Server gives it.
QString truncationMessage();
inline constexpr long kTruncationError = 8152;

}  // namespace qivo::database
