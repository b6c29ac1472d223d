#pragma once

#include <QFont>

namespace qivo::widgets {

// The screens are designed in 微软雅黑; where it is missing the platform's CJK face stands in.
QFont screenFont(QFont font);

}  // namespace qivo::widgets
