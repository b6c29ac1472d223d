#include "widgets/placement.h"

#include <QApplication>
#include <QLayout>
#include <QScreen>
#include <QWidget>
#include <algorithm>

#include "widgets/twips.h"

namespace qivo::widgets {

namespace {

// How far a window opened from another stands off it.
constexpr int kCascade = 32;
// The frame a window manager usually draws, for when no window of the program shows one yet.
constexpr QMargins kUsualFrame{4, 30, 4, 4};

QMargins frameOf(const QWidget* window) {
    const QRect outer = window->frameGeometry();
    const QRect inner = window->geometry();
    return {inner.left() - outer.left(), inner.top() - outer.top(), outer.right() - inner.right(),
            outer.bottom() - inner.bottom()};
}

// A window not shown yet has no frame: it will get the one its shown siblings have.
QMargins expectedFrame() {
    for (const QWidget* other : QApplication::topLevelWidgets()) {
        if (other->isVisible() && !frameOf(other).isNull()) {
            return frameOf(other);
        }
    }
    return kUsualFrame;
}

// value held within [low, high]; low when a window larger than the area leaves no such range,
// so its top-left corner and title bar stay on the screen.
int clampTo(int value, int low, int high) {
    return std::max(low, std::min(value, high));
}

}  // namespace

TwipsRect twipsGeometry(const QWidget* widget) {
    const QRect pixels = widget->geometry();
    return {pixelsToTwips(pixels.x()), pixelsToTwips(pixels.y()), pixelsToTwips(pixels.width()),
            pixelsToTwips(pixels.height())};
}

void setTwipsGeometry(QWidget* widget, const TwipsRect& rect) {
    widget->setGeometry(twipsToPixels(rect.left), twipsToPixels(rect.top),
                        twipsToPixels(rect.width), twipsToPixels(rect.height));
}

void placeWindow(QWidget* window, const QWidget* beside) {
    if (window->layout() != nullptr) {
        window->layout()->activate();
    }
    const QScreen* screen = beside != nullptr ? beside->screen() : window->screen();
    const QRect area = screen->availableGeometry();
    const QMargins frame = expectedFrame();
    const QSize room = area.size().shrunkBy(frame);
    // A window that needs more than the screen holds, as at a large scale on a small screen,
    // scrolls what does not fit instead.
    window->setMinimumSize(window->minimumSize().boundedTo(room));
    const QSize size = window->size().boundedTo(room).expandedTo(window->minimumSize());
    window->resize(size);
    const QSize outer = size.grownBy(frame);
    const QPoint wanted = beside != nullptr
                              ? beside->frameGeometry().topLeft() + QPoint(kCascade, kCascade)
                              : area.topLeft() + QPoint((area.width() - outer.width()) / 2,
                                                        (area.height() - outer.height()) / 2);
    // A top-level window's position is that of its frame.
    window->move(clampTo(wanted.x(), area.left(), area.right() + 1 - outer.width()),
                 clampTo(wanted.y(), area.top(), area.bottom() + 1 - outer.height()));
}

}  // namespace qivo::widgets
