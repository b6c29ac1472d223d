#include "widgets/text_box.h"

#include <QApplication>
#include <QEvent>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTextCursor>
#include <QValidator>

namespace qivo::widgets {
namespace {

// Refuses a single-line box's edits that would make its text fail a test.
class FitsValidator final : public QValidator {
  public:
    FitsValidator(std::function<bool(const QString&)> fits, QObject* parent)
        : QValidator(parent), fits_(std::move(fits)) {}
    State validate(QString& input, int&) const override {
        return fits_(input) ? Acceptable : Invalid;
    }

  private:
    std::function<bool(const QString&)> fits_;
};

}  // namespace

TextBox::TextBox(QWidget* parent, bool multiLine) : QWidget(parent) {
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    if (multiLine) {
        plain_ = new QPlainTextEdit(this);
        plain_->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
        // Tab moves on to the next control, as from every other box.
        plain_->setTabChangesFocus(true);
        connect(plain_, &QPlainTextEdit::textChanged, this, [this] {
            keepFitting();
            Q_EMIT changed();
        });
    } else {
        line_ = new QLineEdit(this);
        connect(line_, &QLineEdit::returnPressed, this, &TextBox::returnPressed);
        connect(line_, &QLineEdit::textChanged, this, &TextBox::changed);
    }
    layout->addWidget(editor());
    editor()->installEventFilter(this);
    setFocusProxy(editor());
}

QWidget* TextBox::editor() const {
    return line_ != nullptr ? static_cast<QWidget*>(line_) : plain_;
}

QString TextBox::text() const {
    return line_ != nullptr ? line_->text()
                            : plain_->toPlainText().replace(u'\n', QStringLiteral("\r\n"));
}

void TextBox::setText(const QString& text) {
    if (line_ != nullptr) {
        line_->setText(text);
        return;
    }
    settingText_ = true;
    plain_->setPlainText(QString(text).replace(QStringLiteral("\r\n"), QStringLiteral("\n")));
    settingText_ = false;
    lastFitting_ = plain_->toPlainText();
}

void TextBox::setFits(std::function<bool(const QString&)> fits) {
    fits_ = std::move(fits);
    lastFitting_ = plain_ != nullptr ? plain_->toPlainText() : QString();
    if (line_ != nullptr) {
        line_->setValidator(new FitsValidator(fits_, line_));
    }
}

// A multi-line box has no validator: an edit that does not fit is taken back, the cursor where
// the edit began.
void TextBox::keepFitting() {
    if (!fits_ || settingText_) {
        return;
    }
    if (fits_(text())) {
        lastFitting_ = plain_->toPlainText();
        return;
    }
    const int position = std::min<int>(plain_->textCursor().position(), lastFitting_.size());
    settingText_ = true;
    plain_->setPlainText(lastFitting_);
    settingText_ = false;
    QTextCursor cursor = plain_->textCursor();
    cursor.setPosition(position);
    plain_->setTextCursor(cursor);
    QApplication::beep();
}

void TextBox::setReadOnly(bool readOnly) {
    if (line_ != nullptr) {
        line_->setReadOnly(readOnly);
    } else {
        plain_->setReadOnly(readOnly);
    }
    // A box that takes no typing is drawn on the window's colour, not the colour of an entry.
    QPalette look = editor()->palette();
    look.setBrush(QPalette::Base,
                  readOnly ? look.window() : QApplication::palette(editor()).base());
    editor()->setPalette(look);
}

void TextBox::setPasswordChar(bool on) {
    if (line_ != nullptr) {
        line_->setEchoMode(on ? QLineEdit::Password : QLineEdit::Normal);
    }
}

void TextBox::selectAll() {
    if (line_ != nullptr) {
        line_->selectAll();
    } else {
        plain_->selectAll();
    }
}

int TextBox::selStart() const {
    if (line_ != nullptr) {
        return line_->hasSelectedText() ? line_->selectionStart() : line_->cursorPosition();
    }
    return plain_->textCursor().selectionStart();
}

int TextBox::selLength() const {
    if (line_ != nullptr) {
        return line_->selectionLength();
    }
    const QTextCursor cursor = plain_->textCursor();
    return cursor.selectionEnd() - cursor.selectionStart();
}

bool TextBox::eventFilter(QObject* watched, QEvent* event) {
    if (watched == editor() && event->type() == QEvent::FocusIn) {
        Q_EMIT gotFocus();
    }
    return QWidget::eventFilter(watched, event);
}

}  // namespace qivo::widgets
