#pragma once

namespace qivo::widgets {

// Design lengths are in twips; the screen has 15 twips to a pixel (96 dpi).
constexpr int kTwipsPerPixel = 15;

constexpr int twipsToPixels(int twips) {
    return twips / kTwipsPerPixel;
}
constexpr int pixelsToTwips(int pixels) {
    return pixels * kTwipsPerPixel;
}

}  // namespace qivo::widgets
