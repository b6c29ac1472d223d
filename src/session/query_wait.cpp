#include "session/query_wait.h"

#include <QApplication>
#include <QPointer>

#include "database/statement_wait.h"
#include "widgets/wait_dialog.h"

namespace qivo {
namespace {

class WaitWindow final : public database::StatementWait {
  public:
    WaitWindow() : dialog_(new widgets::WaitDialog(QApplication::activeWindow())) {
        dialog_->show();
    }
    ~WaitWindow() override { delete dialog_.data(); }
    WaitWindow(const WaitWindow&) = delete;
    WaitWindow& operator=(const WaitWindow&) = delete;

    // A window closed from under the wait ends the statement as 取消 does.
    bool keepAlive(int waitMs) override { return !dialog_ || dialog_->keepAlive(waitMs); }

  private:
    QPointer<widgets::WaitDialog> dialog_;
};

}  // namespace

void showWaitWindowForSlowStatements() {
    database::setStatementWaitFactory([]() -> std::unique_ptr<database::StatementWait> {
        if (!qobject_cast<QApplication*>(QCoreApplication::instance())) {
            return nullptr;
        }
        return std::make_unique<WaitWindow>();
    });
}

}  // namespace qivo
