#pragma once

namespace qivo::database {
class AdoConnection;
}

namespace qivo::db {

// Fills an embedded database that has the schema with a demo estate group: estates, buildings,
// rooms, owners, household members, staff with posts and `registrations` rows of 业户互联网 in
// every state. The same every time for the same count.
void writeDemoData(database::AdoConnection& connection, int registrations);

}  // namespace qivo::db
