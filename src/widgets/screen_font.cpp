#include "widgets/screen_font.h"

#include <QFontDatabase>
#include <QStringList>

namespace qivo::widgets {

QFont screenFont(QFont font) {
    for (const QString& family : {QStringLiteral("微软雅黑"), QStringLiteral("Microsoft YaHei")}) {
        if (QFontDatabase::hasFamily(family)) {
            font.setFamily(family);
            return font;
        }
    }
    font.setFamilies({QStringLiteral("Noto Sans CJK SC"), QStringLiteral("WenQuanYi Micro Hei")});
    return font;
}

}  // namespace qivo::widgets
