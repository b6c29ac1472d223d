#pragma once

#include <QStatusBar>
#include <vector>

class QLabel;

namespace qivo::widgets {

// A status bar of text panels, numbered from 1.
class StatusBar final : public QStatusBar {
    Q_OBJECT
  public:
    explicit StatusBar(QWidget* parent = nullptr, int panels = 2);

    QString panelText(int index) const;
    void setPanelText(int index, const QString& text);
    int panelCount() const { return static_cast<int>(panels_.size()); }
    // Adds a panel on the right and returns its number; stretch 0 keeps it as wide as its text.
    int addPanel(int stretch);

  private:
    QLabel* panel(int index) const;  // throws runtime::RuntimeError for an index out of range
    std::vector<QLabel*> panels_;
};

}  // namespace qivo::widgets
