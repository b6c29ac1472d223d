#include "owner/owner_input.h"

#include "database/sql_text.h"
#include "db/schema.h"
#include "widgets/text_box.h"

namespace qivo::owner_input {
namespace {

QString capacityText(const db::TextCapacity& capacity) {
    return capacity.wide ? QStringLiteral("%1 个字").arg(capacity.size)
                         : QStringLiteral("%1 个字节（一个汉字占 2 个字节）").arg(capacity.size);
}

}  // namespace

void limitToColumn(widgets::TextBox* box, const QString& table, const QString& column) {
    const std::optional<db::TextCapacity> capacity = db::textCapacity(table, column);
    if (!capacity) {
        return;
    }
    box->setFits([capacity = *capacity](const QString& text) {
        return database::serverTextLength(text, capacity.wide) <= capacity.size;
    });
    box->setToolTip(QStringLiteral("最多 ") + capacityText(*capacity));
}

bool fitsColumn(const QString& text, const QString& table, const QString& column) {
    const std::optional<db::TextCapacity> capacity = db::textCapacity(table, column);
    return !capacity || database::serverTextLength(text, capacity->wide) <= capacity->size;
}

QString tooLongMessage(const QString& label, const QString& table, const QString& column) {
    const std::optional<db::TextCapacity> capacity = db::textCapacity(table, column);
    return QStringLiteral("%1太长，最多能存 %2，请改短后再保存。")
        .arg(fieldName(label), capacity ? capacityText(*capacity) : QString());
}

QString dateFormsTip() {
    return QStringLiteral("日期，例如 2024-03-05、2024/3/5 或 20240305");
}

QString fieldName(const QString& labelText) {
    return QString(labelText).remove(u' ');
}

}  // namespace qivo::owner_input
