#pragma once

#include <QString>

namespace qivo::platform {
class TextBox;
}

namespace qivo::review {

// Marks a registration box whose text differs from the owner's record (blanks at either end
// not counted), with the owner's value as its tool tip; a matching box loses its mark.
void markMismatch(platform::TextBox* registered, const QString& ownerValue);
void clearMismatch(platform::TextBox* registered);
bool isMarkedMismatch(const platform::TextBox* registered);

}  // namespace qivo::review
