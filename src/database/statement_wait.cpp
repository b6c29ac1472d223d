#include "database/statement_wait.h"

#include "runtime/runtime_error.h"

namespace qivo::database {
namespace {

StatementWaitFactory& factory() {
    static StatementWaitFactory instance;
    return instance;
}

}  // namespace

void setStatementWaitFactory(StatementWaitFactory factory) {
    database::factory() = std::move(factory);
}

std::unique_ptr<StatementWait> makeStatementWait() {
    return factory() ? factory()() : nullptr;
}

void throwCancelled() {
    throw runtime::RuntimeError(kCancelledError, QStringLiteral("操作已被用户取消。"));
}

}  // namespace qivo::database
