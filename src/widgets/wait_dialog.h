#pragma once

#include <QDialog>

class QLabel;
class QPushButton;

namespace qivo::widgets {

// The small modal window shown while the database has not answered: "正在查询数据库…" and
// 取消. It only records the wish to cancel; whoever waits decides what cancelling means.
class WaitDialog final : public QDialog {
  public:
    explicit WaitDialog(QWidget* parent = nullptr);

    QLabel* Label1;
    QPushButton* cmdCancel;

    // Handles the window events that are due, waiting up to waitMs for one; true once 取消 was
    // pressed (or the window closed, or Esc pressed).
    bool keepAlive(int waitMs);

    void reject() override;

  private:
    bool cancelled_ = false;
};

}  // namespace qivo::widgets
