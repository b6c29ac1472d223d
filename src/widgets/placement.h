#pragma once

class QWidget;

namespace qivo::widgets {

// A control's place and size in twips, as the screens are designed.
struct TwipsRect {
    int left = 0;
    int top = 0;
    int width = 0;
    int height = 0;
};

TwipsRect twipsGeometry(const QWidget* widget);
void setTwipsGeometry(QWidget* widget, const TwipsRect& rect);

// Sizes and places a window about to be shown so that its frame, title bar included, lies in
// the free area of its screen: centred there, or offset below and right of `beside` when given,
// so neither window covers the other's title bar. The window never shrinks below its minimum,
// and its minimum never exceeds the screen's free area.
void placeWindow(QWidget* window, const QWidget* beside = nullptr);

}  // namespace qivo::widgets
