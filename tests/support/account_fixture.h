#pragma once

namespace qivo::test {

class FixtureDb;

// Two estates, 白云小区 sorting before 翠湖花园 by pinyin; in 翠湖花园 building "2栋" before
// "10栋" and room "201室" before "1001". Owners 1-4 live there, in list order 4, 3, 2, 1; owner 5
// lives in a building of no estate. Owner 1 has every column filled, owner 2 only a name; their
// 说明 are "新进户", Null, "" and "新进户 " (trailing blank) for owners 1-4.
void writeEstates(FixtureDb& db);

}  // namespace qivo::test
