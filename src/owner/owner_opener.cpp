#include "owner/owner_opener.h"

#include <QIODevice>

#include "owner/owner_form.h"

namespace qivo {

void OwnerKeyLine::receiveOwnerKey(const QString& ownerKey) {
    out_.write(QStringLiteral("ZH_ID=%1\n").arg(ownerKey).toUtf8());
}

void openOwnerScreen(frm业户信息& screen, const QString& ownerKey, const QString& roomId,
                     OwnerKeyReceiver& opener) {
    screen.Frame1[0]->Tag = ownerKey;
    screen.Frame1[1]->Tag = roomId;
    screen.setOpener(&opener);
    screen.Show();
}

}  // namespace qivo
