#pragma once

#include <QList>
#include <QString>
#include <QVariant>

namespace qivo::test {

// A plain ODBC connection of the tests' own, beside the program's: it sets a real server up and
// reads back what the program wrote there, through none of the program's database code.
class TsqlClient {
  public:
    // Connects through FreeTDS; throws runtime::RuntimeError with the driver's message.
    TsqlClient(const QString& server, int port, const QString& user, const QString& password,
               const QString& database);
    ~TsqlClient();
    TsqlClient(const TsqlClient&) = delete;
    TsqlClient& operator=(const TsqlClient&) = delete;

    // Runs one batch and reads every result set: the rows of all of them, each value as text
    // (an integer too) or a null QVariant. The first error ends it as runtime::RuntimeError
    // {native error number, message}.
    QList<QVariantList> run(const QString& batch);
    QVariant scalar(const QString& batch) { return run(batch).value(0).value(0); }

  private:
    void close();
    void* environment_ = nullptr;
    void* connection_ = nullptr;
};

// The batches of a script, split at lines holding only GO.
QStringList scriptBatches(const QString& script);

}  // namespace qivo::test
