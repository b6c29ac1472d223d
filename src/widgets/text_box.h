#pragma once

#include <QWidget>

class QLineEdit;
class QPlainTextEdit;

namespace qivo::widgets {

// One class for single-line and multi-line text boxes.
class TextBox final : public QWidget {
    Q_OBJECT
  public:
    explicit TextBox(QWidget* parent = nullptr, bool multiLine = false);

    QString text() const;
    void setText(const QString& text);
    bool isMultiLine() const { return plain_ != nullptr; }

    void setReadOnly(bool readOnly);
    void setPasswordChar(bool on);  // single-line only: echo as bullets
    void selectAll();               // selection start 0, length = text length
    int selStart() const;
    int selLength() const;

    QLineEdit* lineEdit() const { return line_; }         // null for a multi-line box
    QPlainTextEdit* plainText() const { return plain_; }  // null for a single-line box
    QWidget* editor() const;

  Q_SIGNALS:
    void gotFocus();
    void returnPressed();  // Enter (character code 13) in a single-line box
    void changed();

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    QLineEdit* line_ = nullptr;
    QPlainTextEdit* plain_ = nullptr;
};

}  // namespace qivo::widgets
