#pragma once

#include <QString>
#include <functional>

namespace qivo::widgets {

constexpr int vbOKOnly = 0;
constexpr int vbYesNo = 4;
constexpr int vbCritical = 16;
constexpr int vbInformation = 64;

constexpr int vbOK = 1;
constexpr int vbYes = 6;
constexpr int vbNo = 7;

struct MsgBoxRequest {
    QString prompt;
    int style = vbOKOnly;
    QString title;  // already resolved to programTitle() when the caller gave none
};

using MsgBoxResponder = std::function<int(const MsgBoxRequest&)>;

// The program's title, shown on every message box that names none.
QString programTitle();

// The only way the program shows a message. Returns vbOK, vbYes or vbNo.
int MsgBox(const QString& prompt, int style = vbOKOnly, const QString& title = {});

// Replaces the dialog (tests answer questions with it); an empty function restores the dialog.
void setMsgBoxResponder(MsgBoxResponder responder);

}  // namespace qivo::widgets
