#include "platform/form.h"

#include <QCloseEvent>
#include <QEvent>

#include "platform/error_path.h"
#include "platform/twips.h"

namespace qivo::platform {

Form::Form(QWidget* parent) : QWidget(parent, Qt::Window) {}

void Form::Load() {
    if (loaded_) {
        return;
    }
    // Marked first: Form_Load may unload the form again (a sign-in that hands over at once).
    loaded_ = true;
    guarded([this] { Form_Load(); });
}

void Form::Show() {
    Load();
    if (!loaded_) {
        return;
    }
    show();
    raise();
    activateWindow();
}

void Form::Unload() {
    close();
}

int Form::ScaleWidth() const {
    return pixelsToTwips(width());
}

int Form::ScaleHeight() const {
    return pixelsToTwips(height());
}

bool Form::event(QEvent* event) {
    if (event->type() == QEvent::WindowActivate) {
        guarded([this] { Form_Activate(); });
    }
    return QWidget::event(event);
}

void Form::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    guarded([this] { Form_Resize(); });
}

void Form::closeEvent(QCloseEvent* event) {
    if (loaded_) {
        loaded_ = false;
        guarded([this] { Form_Unload(); });
    }
    event->accept();
}

}  // namespace qivo::platform
