#include "accounts/grid_field.h"

#include <charconv>

#include "database/ado.h"

namespace qivo {

QUtf8StringView numberText(qint64 number, CellText& held) {
    const std::to_chars_result end =
        std::to_chars(held.digits.data(), held.digits.data() + held.digits.size(), number);
    return {held.digits.data(), end.ptr - held.digits.data()};
}

qint32 fieldInt(const database::Recordset& record, int field) {
    if (const std::optional<qint64> number = record.fieldInteger(field)) {
        return static_cast<qint32>(*number);
    }
    return record.field(field).toInt();
}

QUtf8StringView fieldUtf8Text(const database::Recordset& record, int field, CellText& held) {
    if (const std::optional<QByteArrayView> bytes = record.fieldUtf8(field)) {
        return {bytes->data(), bytes->size()};
    }
    if (const std::optional<qint64> number = record.fieldInteger(field)) {
        return numberText(*number, held);
    }
    held.converted = database::fieldText(record.field(field)).toUtf8();
    return held.converted;
}

}  // namespace qivo
