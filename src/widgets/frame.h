#pragma once

#include <QGroupBox>
#include <QString>

namespace qivo::widgets {

// A frame: a captioned group of controls that can carry a value of its owner's choosing.
class Frame final : public QGroupBox {
  public:
    using QGroupBox::QGroupBox;

    QString Tag;
};

}  // namespace qivo::widgets
