#include "widgets/image_button.h"

#include <QMouseEvent>

namespace qivo::widgets {

ImageButton::ImageButton(const QPixmap& picture, QWidget* parent) : QLabel(parent) {
    setPixmap(picture);
    setAlignment(Qt::AlignCenter);
    setCursor(Qt::PointingHandCursor);
    setBorderStyle(0);
}

void ImageButton::setBorderStyle(int style) {
    borderStyle_ = style;
    setFrameStyle(style == 1 ? QFrame::Box | QFrame::Plain : QFrame::NoFrame);
}

void ImageButton::mousePressEvent(QMouseEvent* event) {
    event->accept();
    Q_EMIT MouseDown();
}

void ImageButton::mouseReleaseEvent(QMouseEvent* event) {
    event->accept();
    Q_EMIT MouseUp();
    if (event->button() == Qt::LeftButton && rect().contains(event->position().toPoint())) {
        Q_EMIT Click();
    }
}

}  // namespace qivo::widgets
