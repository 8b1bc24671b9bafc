// The content of the preferences window. Level and colour are stored the moment they change, the
// two numbers when their field ends editing and again when the window closes. A text that is no
// number stays in its field and stores nothing; a line beside the field says so, and also where a
// number is stored as another. Main thread.
#pragma once

#include <QWidget>
#include <memory>

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

    // For a window that is open already: what was typed is stored, and all is shown as it is now.
    void showAgain();
    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

  public slots:
    // The sender tells by its property "tag" which it is: 1001 the sample size, 1002 the quota; 95
    // and 99 the buttons. Any other field does nothing, any other button stands for 95.
    void editingDidEnd(QObject* sender);
    void confidenceButtonTapped(QObject* sender);
    void colorWellTapped();

  signals:
    // At every closing, whether or not anything was stored.
    void preferencesDidChange();
    // A field has stored what it may: captions and values follow.
    void textDidEndEditing();
    // At once, for plots that are on the screen: level or colour.
    void plotPreferencesDidChange();
    void closeRequested();

  protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void changeEvent(QEvent* event) override;

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
    // An empty note leaves the line to what the field is for.
    void showNote(QLineEdit& field, QLabel& line, const QString& purpose, const QString& note);
    void setQuiet(QLabel& line);

    std::unique_ptr<Ui::PreferencesView> ui_;
};

}  // namespace zorvel
