#pragma once

#include <QByteArray>
#include <QString>

namespace qivo::test {

// Text as SQL Server's Chinese_PRC collation stores varchar: code page 936 (GBK), with '?' for
// what GBK cannot hold.
QByteArray toCodePage936(const QString& text);

}  // namespace qivo::test
