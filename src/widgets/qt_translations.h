#pragma once

class QCoreApplication;

namespace qivo::widgets {

// Qt's own texts (file dialog, text box menus, standard buttons) in Chinese, as the rest of the
// program: in the system's language when that is a Chinese one Qt has a translation for, else in
// Simplified Chinese. Looks beside the program first (translations/, where the Windows package
// puts them), then where Qt keeps its translations. Returns whether a translation was loaded.
bool loadQtTranslations(QCoreApplication& app);

}  // namespace qivo::widgets
