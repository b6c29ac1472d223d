#pragma once

#include <QString>

namespace qivo::db {

// The owner address expression DZ: building levels, their words, room and room word run
// together, a Null part counting as empty text. Follows a select-list head ending in ", ";
// B binds to 楼表 and C to 室表.
QString DZ();

// The from-clause of both account lists: each registration with its owner (D), room (C),
// building (B) and estate (A); a registration missing any of them drops out.
QString RegistrationJoins();

// The ordering clause that closes both account lists: estate, then each address level by
// length and value, so "2" sorts before "10".
QString AddressOrder();

}  // namespace qivo::db
