#pragma once

#include <QWidget>
#include <functional>

class QLineEdit;
class QPlainTextEdit;

namespace qivo::widgets {

// One class for single-line and multi-line text boxes.
class TextBox final : public QWidget {
    Q_OBJECT
  public:
    explicit TextBox(QWidget* parent = nullptr, bool multiLine = false);

    // A multi-line box hands its line breaks over as CR LF, as the estate system's other
    // programs store and read them.
    QString text() const;
    void setText(const QString& text);
    // Typing or pasting that would make the text fail the test is refused as it happens; text
    // set by the program is not tested.
    void setFits(std::function<bool(const QString&)> fits);
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
    void keepFitting();

    QLineEdit* line_ = nullptr;
    QPlainTextEdit* plain_ = nullptr;
    std::function<bool(const QString&)> fits_;
    QString lastFitting_;  // a multi-line box's text before the edit that is being checked
    bool settingText_ = false;
};

}  // namespace qivo::widgets
