#pragma once

class QWidget;

namespace qivo::platform {

// A control's place and size in twips, as the screens are designed.
struct TwipsRect {
    int left = 0;
    int top = 0;
    int width = 0;
    int height = 0;
};

TwipsRect twipsGeometry(const QWidget* widget);
void setTwipsGeometry(QWidget* widget, const TwipsRect& rect);

}  // namespace qivo::platform
