#pragma once

#include <QString>
#include <QWidget>

namespace qivo::widgets {

// A top-level screen. Show() loads it on first use (Form_Load), shows it whole on the screen
// and brings it to the front; Unload() closes it (Form_Unload) and the next Show() loads it again.
// Becoming the active form after another form of the program (not a message box) runs
// Form_Activate, a size change Form_Resize; each on the common error path.
class Form : public QWidget {
    Q_OBJECT
  public:
    explicit Form(QWidget* parent = nullptr);
    ~Form() override;

    void Load();
    void Show();
    // Show(), opened the first time offset from the window it is opened from.
    void ShowBeside(const QWidget& opener);
    void Unload();
    bool isLoaded() const { return loaded_; }

    virtual void Form_Load() {}
    virtual void Form_Activate() {}
    virtual void Form_Resize() {}
    // Asked before the form closes, however it is closed; false keeps it open.
    virtual bool Form_QueryUnload() { return true; }
    virtual void Form_Unload() {}

    // Inner width and height in twips.
    int ScaleWidth() const;
    int ScaleHeight() const;

    QString Tag;

  protected:
    bool event(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

  private:
    void showPlaced(const QWidget* opener);

    bool loaded_ = false;
    bool placed_ = false;  // a window keeps its place once it has been on screen
};

}  // namespace qivo::widgets
