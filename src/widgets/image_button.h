#pragma once

#include <QLabel>

namespace qivo::widgets {

// A small picture that acts as a button: MouseDown and MouseUp for any mouse button, then Click
// when the left button is released over it. BorderStyle 1 draws a thin single border, 0 none.
class ImageButton final : public QLabel {
    Q_OBJECT

  public:
    explicit ImageButton(const QPixmap& picture, QWidget* parent = nullptr);

    int BorderStyle() const { return borderStyle_; }
    void setBorderStyle(int style);

  Q_SIGNALS:
    void MouseDown();
    void MouseUp();
    void Click();

  protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

  private:
    int borderStyle_ = 0;
};

}  // namespace qivo::widgets
