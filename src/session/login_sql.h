#pragma once

#include <QString>

namespace qivo {

// The staff check: employee number as typed, password already trimmed.
QString StaffQuery(const QString& user, const QString& trimmedPassword);

// The signed-in user's current posts with their departments and categories.
QString PostQuery(const QString& user);

}  // namespace qivo
