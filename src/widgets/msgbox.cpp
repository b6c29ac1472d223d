#include "widgets/msgbox.h"

#include <QApplication>
#include <QMessageBox>
#include <QPushButton>
#include <utility>

namespace qivo::widgets {

namespace {

MsgBoxResponder& responder() {
    static MsgBoxResponder instance;
    return instance;
}

QMessageBox::Icon iconFor(int style) {
    switch (style & 0xF0) {
        case vbCritical:
            return QMessageBox::Critical;
        case vbInformation:
            return QMessageBox::Information;
        default:
            return QMessageBox::NoIcon;
    }
}

int showDialog(const MsgBoxRequest& request) {
    QMessageBox box(iconFor(request.style), request.title, request.prompt, QMessageBox::NoButton,
                    QApplication::activeWindow());
    if ((request.style & 0xF) == vbYesNo) {
        QPushButton* yes = box.addButton(QStringLiteral("是"), QMessageBox::YesRole);
        box.addButton(QStringLiteral("否"), QMessageBox::NoRole);
        box.setDefaultButton(yes);
        box.exec();
        return box.clickedButton() == yes ? vbYes : vbNo;
    }
    box.setDefaultButton(box.addButton(QStringLiteral("确定"), QMessageBox::AcceptRole));
    box.exec();
    return vbOK;
}

}  // namespace

QString programTitle() {
    return QStringLiteral("Qivo账号审核");
}

int MsgBox(const QString& prompt, int style, const QString& title) {
    const MsgBoxRequest request{prompt, style, title.isEmpty() ? programTitle() : title};
    if (responder()) {
        return responder()(request);
    }
    return showDialog(request);
}

void setMsgBoxResponder(MsgBoxResponder responder) {
    qivo::widgets::responder() = std::move(responder);
}

}  // namespace qivo::widgets
