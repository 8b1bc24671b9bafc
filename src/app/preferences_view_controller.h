// The preferences window and its content. Level and colour are stored when they change, the two
// numbers when their field ends editing and again when the window closes. A text that is no number
// stays in its field and is not stored; the line below the field says so. It also says if a number
// is beyond the limits and which one is stored instead. Main thread.
#pragma once

#include <QWidget>
#include <memory>

#include "ui/kit/window_placement.h"

class QLabel;
class QLineEdit;
namespace Ui {
class PreferencesView;
}

namespace zorvel {

class ColorPanel;

class PreferencesViewController : public QWidget {
    Q_OBJECT
  public:
    // The panel must outlive the view.
    explicit PreferencesViewController(ColorPanel& colors, QWidget* parent = nullptr);
    ~PreferencesViewController() override;

    // If the window is open already: stores what was typed, and shows the current values.
    void showAgain();
    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

  public slots:
    // The property "tag" of the sender says which it is: 1001 sample size, 1002 quota; 95 and 99
    // the buttons. Any other field is ignored, any other button counts as 95.
    void editingDidEnd(QObject* sender);
    void confidenceButtonTapped(QObject* sender);
    void colorWellTapped();

  signals:
    // At every closing, even if nothing was stored.
    void preferencesDidChange();
    // A field has stored its value: captions and values must follow.
    void textDidEndEditing();
    // Level or colour has changed: plots on the screen must follow.
    void plotPreferencesDidChange();
    void closeRequested();

  protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

  private:
    void viewDidLoad();
    void viewWillAppear();
    void viewWillDisappear();
    void showConfidence();
    void showColor();
    void storeSampleSize(const QString& text);
    void storeQuota(const QString& text);
    void noteSampleSize();
    void noteQuota();
    // With an empty note the line shows what the field is for.
    void showNote(QLineEdit& field, QLabel& line, const QString& purpose, const QString& note);

    std::unique_ptr<Ui::PreferencesView> ui_;
};

// Not modal; the program does not stay open for it.
class PreferencesWindowController : public PlacedWindow {
    Q_OBJECT
  public:
    // The panel must outlive the window.
    explicit PreferencesWindowController(ColorPanel& colors);

    [[nodiscard]] PreferencesViewController& viewController() { return *viewController_; }

  private:
    PreferencesViewController* viewController_;
};

}  // namespace zorvel
