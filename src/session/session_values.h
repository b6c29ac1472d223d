#pragma once

#include <QString>

namespace qivo {

// The program-wide session values, set at sign-in or from the command line.
inline QString CurrentUserId;
inline QString CurrentUserName;
inline QString CurrentDeptId;
inline QString CurrentDeptName;
inline QString CurrentPostId;
inline QString CurrentPostName;
inline QString CurrentDeptCategoryId;
inline QString CurrentDeptCategoryName;
inline QString CurrentPostCategoryId;
inline QString CurrentPostCategoryName;
inline QString CommandLineText;

}  // namespace qivo
