#pragma once

#include <QString>

#include "owner/owner_key_receiver.h"

class QIODevice;

namespace qivo {

class frm业户信息;

// An opener in another process: the key handed back is written as one line "ZH_ID=<key>".
class OwnerKeyLine final : public OwnerKeyReceiver {
  public:
    explicit OwnerKeyLine(QIODevice& out) : out_(out) {}
    void receiveOwnerKey(const QString& ownerKey) override;

  private:
    QIODevice& out_;
};

// Shows the owner screen for the stored owner ownerKey, or, with an empty ownerKey, for a new
// owner of room roomId; opener learns the owner key when the screen is unloaded.
void openOwnerScreen(frm业户信息& screen, const QString& ownerKey, const QString& roomId,
                     OwnerKeyReceiver& opener);

}  // namespace qivo
