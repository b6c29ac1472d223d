#pragma once

#include "platform/engine.h"

namespace qivo::platform {

// SQL Server over ODBC: statements go out as the program wrote them.
class OdbcEngine final : public Engine {
  public:
    QSqlDatabase open(const QString& name, const QMap<QString, QString>& parts,
                      int loginTimeout) const override;
    QStringList statements(const QString& sql) const override;
    QString identityColumn(QSqlDatabase& db, const QString& table) const override;
    QVariant insertRow(QSqlDatabase& db, const QString& table, const QStringList& columns,
                       const QVariantList& values) const override;
    QString quoteName(const QString& name) const override;
};

}  // namespace qivo::platform
