#pragma once

#include <QStringView>
#include <array>

namespace qivo::owner_fields {

// The 业主表 columns shown in Text2(0) … Text2(10), in that order.
inline constexpr std::array<QStringView, 11> kOwnerBoxColumns{
    u"姓名",     u"固定电话",     u"移动电话", u"身份证",     u"购房日期", u"交房日期",
    u"进户日期", u"开始收费日期", u"工作单位", u"户籍所在地", u"备注"};

// The ZHZL columns of member grid columns 1 … 15, in that order (also the order they are saved).
inline constexpr std::array<QStringView, 15> kMemberGridColumns{
    u"ZL_xm",  u"ZL_gx", u"ZL_xb",   u"ZL_csrq", u"ZL_csd", u"ZL_jg", u"ZL_whcd", u"ZL_hy",
    u"ZL_sfz", u"ZL_dh", u"ZL_yddh", u"ZL_fwcs", u"ZL_zj",  u"ZL_mz", u"ZL_bz"};

// The labels (Label1 indexes) beside Text2(0) … Text2(10), which name the boxes in messages.
inline constexpr std::array<int, 11> kOwnerBoxLabels{18, 0, 6, 3, 2, 16, 17, 8, 1, 7, 5};
// Text2 indexes of the owner's four dates.
inline constexpr std::array<std::size_t, 4> kOwnerDateBoxes{4, 5, 6, 7};

// The labels beside the controls of member grid columns 1 … 15.
inline constexpr std::array<int, 15> kMemberLabels{35, 34, 33, 32, 31, 30, 21, 20,
                                                   45, 42, 4,  43, 41, 40, 39};
// The member grid column of the birth date.
inline constexpr int kBirthDateColumn = 4;

// Grid columns edited in a combo box rather than a text box.
inline constexpr int kSexColumn = 3;
inline constexpr int kMaritalColumn = 8;

// The member grid's columns, header texts and alignment.
inline constexpr QStringView kMemberGridFormat =
    u"<序 |<姓名           |<关系        |<性别|<出生日期   |<出生地       |<籍贯（国籍)     "
    u"|<文化程度 |<婚姻状况|<身份证                |<固定电话  |<移动电话    |<服务处所            "
    u"|<宗教       |<民族        |<备注                    |";

}  // namespace qivo::owner_fields
