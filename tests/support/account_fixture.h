#pragma once

namespace qivo::test {

class FixtureDb;

// Two estates, 白云小区 sorting before 翠湖花园 by pinyin; in 翠湖花园 building "2栋" before
// "10栋" and room "201室" before "1001". Owners 1-4 live there, in list order 4, 3, 2, 1; owner 5
// lives in a building of no estate. Owner 1 has every column filled, owner 2 only a name; their
// 说明 are "新进户", Null, "" and "新进户 " (trailing blank) for owners 1-4.
void writeEstates(FixtureDb& db);

// Staff with password "pw": 1001 " 王丽 " holds one post (客服中心 客服主管), 1002 李强 two (that
// one as main, 工程部 "维修员 " as second), 1003 has left, 1004's post has ended.
void writeStaff(FixtureDb& db);

}  // namespace qivo::test
