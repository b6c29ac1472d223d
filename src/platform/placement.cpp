#include "platform/placement.h"

#include <QWidget>

#include "platform/twips.h"

namespace qivo::platform {

TwipsRect twipsGeometry(const QWidget* widget) {
    const QRect pixels = widget->geometry();
    return {pixelsToTwips(pixels.x()), pixelsToTwips(pixels.y()), pixelsToTwips(pixels.width()),
            pixelsToTwips(pixels.height())};
}

void setTwipsGeometry(QWidget* widget, const TwipsRect& rect) {
    widget->setGeometry(twipsToPixels(rect.left), twipsToPixels(rect.top),
                        twipsToPixels(rect.width), twipsToPixels(rect.height));
}

}  // namespace qivo::platform
