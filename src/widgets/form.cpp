#include "widgets/form.h"

#include <QCloseEvent>
#include <QEvent>

#include "widgets/error_path.h"
#include "widgets/placement.h"
#include "widgets/twips.h"

namespace qivo::widgets {
namespace {

// The form that last became active. Activation counts only when it moves from one form of the
// program to another: closing a message box or coming back from another program is no new
// activation, so a screen does not reload under the user's typing.
const Form* lastActive = nullptr;

}  // namespace

Form::Form(QWidget* parent) : QWidget(parent, Qt::Window) {}

Form::~Form() {
    if (lastActive == this) {
        lastActive = nullptr;
    }
}

void Form::Load() {
    if (loaded_) {
        return;
    }
    // Marked first: Form_Load may unload the form again (a sign-in that hands over at once).
    loaded_ = true;
    guarded([this] { Form_Load(); });
}

void Form::Show() {
    showPlaced(nullptr);
}

void Form::ShowBeside(const QWidget& opener) {
    showPlaced(&opener);
}

void Form::showPlaced(const QWidget* opener) {
    Load();
    if (!loaded_) {
        return;
    }
    if (!placed_) {
        placeWindow(this, opener);
        placed_ = true;
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
    if (event->type() == QEvent::WindowActivate && lastActive != this) {
        lastActive = this;
        guarded([this] { Form_Activate(); });
    }
    return QWidget::event(event);
}

void Form::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    guarded([this] { Form_Resize(); });
}

void Form::closeEvent(QCloseEvent* event) {
    bool goAhead = true;
    guarded([&] { goAhead = !loaded_ || Form_QueryUnload(); });
    if (!goAhead) {
        event->ignore();
        return;
    }
    if (loaded_) {
        loaded_ = false;
        if (lastActive == this) {
            lastActive = nullptr;
        }
        guarded([this] { Form_Unload(); });
    }
    event->accept();
}

}  // namespace qivo::widgets
