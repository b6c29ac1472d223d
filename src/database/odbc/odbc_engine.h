#pragma once

#include <memory>

#include "database/engine.h"

namespace qivo::database {

class OdbcTask;

// SQL Server over ODBC: statements go out as the program wrote them, straight through the ODBC
// API on the connection Qt opened, each statement read to its end and released before the next
// one goes out.
class OdbcEngine final : public Engine {
  public:
    ~OdbcEngine() override;
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
    QVariant dateValue(const QVariant& typed) const override;
    Standing settle(QSqlDatabase& db) const override;
    QString quoteName(const QString& name) const override;
    std::unique_ptr<RowCursor> select(QSqlDatabase& db, const QString& sql) const override;
    std::unique_ptr<RowCursor> query(QSqlDatabase& db, const QString& sql) const override;
    void finishReading() const override;
    void run(const std::function<void()>& work) const override;

  protected:
    bool transactionOpen(QSqlDatabase& db) const override;
    void commitStarting() const override;

  private:
    // The query whose rows may still be arriving.
    mutable std::shared_ptr<OdbcTask> reading_;
};

}  // namespace qivo::database
