#pragma once

#include <QByteArray>
#include <QString>

namespace qivo::test {

// Text as SQL Server stores varchar under a collation of the given Windows code page (936 GBK,
// 950 Big5, 1252 Western), with '?' for what the code page cannot hold.
QByteArray toCodePage(const QString& text, int codePage);

}  // namespace qivo::test
