#pragma once

#include <QByteArray>
#include <QUtf8StringView>
#include <QtGlobal>
#include <array>

namespace qivo {

namespace database {
class Recordset;
}

// Where a list cell's text is kept when the database does not hold it as text: the digits of a
// number, or the field's text turned into UTF-8.
struct CellText {
    std::array<char, 24> digits{};
    QByteArray converted;
};

// A whole number as QString::number writes it, kept in `held`.
QUtf8StringView numberText(qint64 number, CellText& held);

// A record's field (by position) as a whole number, as Fields(...).toInt() gives it.
qint32 fieldInt(const database::Recordset& record, int field);

// A record's field (by position) as the text fieldText gives, in UTF-8: the engine's own bytes
// where it has them, valid until the record moves, otherwise kept in `held`. A long list then
// converts no text it does not paint.
QUtf8StringView fieldUtf8Text(const database::Recordset& record, int field, CellText& held);

}  // namespace qivo
