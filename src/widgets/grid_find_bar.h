#pragma once

#include <QFrame>
#include <vector>

class QLabel;
class QLineEdit;
class QShortcut;

namespace qivo::widgets {

class FlexGrid;

// The find bar of a list grid. Ctrl+F in the window opens it under the grid; Escape in it closes
// it. Typing makes the first row with a shown cell that contains the text (Latin letters in either
// case) the grid's current row and scrolls it into view; Enter and F3 go to the next such row,
// Shift+F3 to the previous one, round the ends. It moves Row only: nothing is opened and no
// Click is raised, so a double-click or Enter afterwards opens the found row as usual. The bar
// sits under the grid; the window makes room for it there when it opens or closes.
class GridFindBar final : public QFrame {
    Q_OBJECT
  public:
    GridFindBar(FlexGrid* grid, QWidget* window);

    QLineEdit* findText() const { return text_; }
    // "3 / 17", "无匹配", or empty while nothing is typed.
    QString result() const;

    void openBar();
    void closeBar();
    void findNext();
    void findPrevious();

  Q_SIGNALS:
    void openedOrClosed();

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    enum class Direction { First, Next, Previous };
    void find(Direction direction);
    void placeUnderGrid();

    FlexGrid* grid_;
    QLineEdit* text_;
    QLabel* result_;
    std::vector<QShortcut*> whileOpen_;
};

}  // namespace qivo::widgets
