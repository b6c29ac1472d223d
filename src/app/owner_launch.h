#pragma once

#include <QStringList>
#include <memory>

#include "owner/owner_opener.h"

namespace qivo::app {

// The owner screen when another program of the estate system starts this one with
// "--owner ZH_ID" or "--new-owner S_ID" (the option is taken out of arguments); the owner key
// comes back on standard output. Null when neither option is given: the sign-in start follows.
// main() keeps the result for the whole run.
std::unique_ptr<OwnerLaunch> startOwnerScreen(QStringList& arguments);

}  // namespace qivo::app
