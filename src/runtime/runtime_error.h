#pragma once

#include <QByteArray>
#include <QString>
#include <exception>

namespace qivo::runtime {

// Error numbers the screens and tests can recognise; database errors carry the driver's own
// number when it has one, otherwise ProviderError.
namespace err {
constexpr long SubscriptOutOfRange = 9;
constexpr long TypeMismatch = 13;
constexpr long InvalidUseOfNull = 94;
constexpr long NoCurrentRecord = 3021;
constexpr long ItemNotFound = 3265;
constexpr long ObjectClosed = 3704;
constexpr long ProviderError = -2147467259;
}  // namespace err

// A run-time error as the screens raise and the common error path shows it.
class RuntimeError : public std::exception {
  public:
    RuntimeError(long number, QString description);

    long number() const noexcept { return number_; }
    const QString& description() const noexcept { return description_; }
    const char* what() const noexcept override { return what_.constData(); }

  private:
    long number_;
    QString description_;
    QByteArray what_;
};

}  // namespace qivo::runtime
