// Asks how a plot is to be saved as an image: its kind, its width on paper, the resolution of PNG,
// and whether titles stand around it. Return goes on to where it is saved, Escape cancels. What
// cannot be saved is told at once, with the reason. Main thread.
#pragma once

#include <QDialog>
#include <functional>

#include "platform/preferences.h"

class QCheckBox;
class QFormLayout;
class QLabel;
class QLineEdit;
class QPushButton;
class QRadioButton;

namespace zorvel {

// An image has at most so many pixels along each side.
inline constexpr int kMostImagePixels = 20'000;

class ImageDialog : public QDialog {
    Q_OBJECT
  public:
    // figureSize(titles): of the drawing with or without titles, in points.
    ImageDialog(const PlotImage& proposed, std::function<QSize(bool titles)> figureSize,
                QWidget* parent = nullptr);

    // Once it is accepted.
    [[nodiscard]] const PlotImage& choice() const { return choice_; }

  protected:
    void changeEvent(QEvent* event) override;

  private:
    void addFormats(QFormLayout& form);
    QLineEdit* addField(QFormLayout& form, const char* name, const QString& title,
                        const QString& value, const QString& unit);
    void addButtons();
    // Takes the choice from the fields, or tells what is wrong with them.
    void readFields();
    [[nodiscard]] QString takeFields();
    [[nodiscard]] QString sizeText() const;
    void showNote(const QString& text, bool isProblem);

    std::function<QSize(bool titles)> figureSize_;
    PlotImage choice_;
    QRadioButton* png_ = nullptr;
    QRadioButton* svg_ = nullptr;
    QLineEdit* width_ = nullptr;
    QLineEdit* resolution_ = nullptr;
    QCheckBox* titles_ = nullptr;
    QLabel* note_ = nullptr;
    QPushButton* save_ = nullptr;
};

}  // namespace zorvel
