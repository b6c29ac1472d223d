// Prints the session text this program was started with, read as qivo-review reads it, so that a
// suite can compare it with what the calling program passed.
#include <QCoreApplication>
#include <cstdio>

#include "session/command_line.h"

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    const QByteArray text = qivo::sessionText(QCoreApplication::arguments().mid(1)).toUtf8();
    std::fwrite(text.constData(), 1, static_cast<std::size_t>(text.size()), stdout);
    return 0;
}
