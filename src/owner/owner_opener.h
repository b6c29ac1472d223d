#pragma once

#include <QString>
#include <QStringList>
#include <memory>

#include "owner/owner_key_receiver.h"

class QIODevice;

namespace qivo {

class frm业户信息;

// An opener in another process: the key handed back is written as one line "ZH_ID=<key>".
class OwnerKeyLine final : public OwnerKeyReceiver {
  public:
    explicit OwnerKeyLine(std::unique_ptr<QIODevice> out);
    ~OwnerKeyLine() override;
    void receiveOwnerKey(const QString& ownerKey) override;

  private:
    std::unique_ptr<QIODevice> out_;
};

// Shows the owner screen for the stored owner ownerKey, or, with an empty ownerKey, for a new
// owner of room roomId; opener learns the owner key when the screen is unloaded.
void openOwnerScreen(frm业户信息& screen, const QString& ownerKey, const QString& roomId,
                     OwnerKeyReceiver& opener);

// The owner screen opened by another program of the estate system, for the run of the program.
class OwnerLaunch final {
  public:
    explicit OwnerLaunch(std::unique_ptr<QIODevice> keyOut);
    ~OwnerLaunch();

    // The screen; null when it could not be opened (the program has then ended).
    frm业户信息* screen() const { return screen_.get(); }
    // The program's exit status when it ended without the screen: 2 for a refused key.
    int exitStatus() const { return exitStatus_; }

    // Takes "--owner ZH_ID" (a stored owner) or "--new-owner S_ID" (a new owner of that room)
    // out of arguments. Returns null when neither is there; otherwise connects to the database
    // and shows the screen, whose key goes to keyOut on unload. Without a database, without a
    // number after the option, or with an owner key that 业主表 or a room key that 室表 does not
    // hold, the program ends instead, the key's refusal told on standard error.
    static std::unique_ptr<OwnerLaunch> fromArguments(QStringList& arguments,
                                                      std::unique_ptr<QIODevice> keyOut);

  private:
    void open(const QString& ownerKey, const QString& roomId);

    void refuse(const QString& reason);

    OwnerKeyLine keyLine_;
    std::unique_ptr<frm业户信息> screen_;
    int exitStatus_ = 0;
};

}  // namespace qivo
