#include "widgets/wait_dialog.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>

#include "widgets/msgbox.h"
#include "widgets/screen_font.h"

namespace qivo::widgets {

WaitDialog::WaitDialog(QWidget* parent)
    : QDialog(parent),
      Label1(new QLabel(QStringLiteral("正在查询数据库…"), this)),
      cmdCancel(new QPushButton(QStringLiteral("取消"), this)) {
    setWindowTitle(programTitle());
    setWindowModality(Qt::ApplicationModal);
    setFont(screenFont(font()));
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(cmdCancel);
    buttons->addStretch();
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(24, 18, 24, 14);
    layout->setSpacing(14);
    layout->addWidget(Label1, 0, Qt::AlignCenter);
    layout->addLayout(buttons);
    setFixedSize(sizeHint().expandedTo(QSize(260, 0)));
    connect(cmdCancel, &QPushButton::clicked, this, &WaitDialog::reject);
}

void WaitDialog::reject() {
    cancelled_ = true;
    cmdCancel->setEnabled(false);
}

bool WaitDialog::keepAlive(int waitMs) {
    if (waitMs <= 0) {
        QCoreApplication::processEvents();
        return cancelled_;
    }
    QEventLoop loop;
    QTimer::singleShot(waitMs, &loop, &QEventLoop::quit);
    loop.exec();
    return cancelled_;
}

}  // namespace qivo::widgets
