#include "app/owner_launch.h"

#include <QFile>
#include <cstdio>

namespace qivo::app {

std::unique_ptr<OwnerLaunch> startOwnerScreen(QStringList& arguments) {
    auto out = std::make_unique<QFile>();
    // Unbuffered: the opener reads the key as soon as the screen closes.
    out->open(stdout, QIODevice::WriteOnly | QIODevice::Unbuffered);
    return OwnerLaunch::fromArguments(arguments, std::move(out));
}

}  // namespace qivo::app
