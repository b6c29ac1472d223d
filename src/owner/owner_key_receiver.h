#pragma once

#include <QString>

namespace qivo {

// Whoever opened the owner screen: learns the owner's key when the screen is unloaded, so that
// it knows the key of an owner the screen has just stored.
class OwnerKeyReceiver {
  public:
    virtual ~OwnerKeyReceiver() = default;
    virtual void receiveOwnerKey(const QString& ownerKey) = 0;
};

}  // namespace qivo
