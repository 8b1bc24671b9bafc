// Asks how a plot is to be saved as an image: its format, its width on paper, the resolution of
// PNG, and whether titles stand around it. Return goes on to where it is saved, Escape cancels. An
// image that cannot be saved is refused at once, with the reason. Main thread.
#pragma once

#include <QDialog>
#include <functional>
#include <memory>

#include "platform/preferences.h"

class QPushButton;

namespace Ui {
class ImageDialog;
}

namespace zorvel {

class ImageDialog : public QDialog {
    Q_OBJECT
  public:
    // figureSize(titles): of the drawing with or without titles, in points.
    ImageDialog(const PlotImage& proposed, std::function<QSize(bool titles)> figureSize,
                QWidget* parent = nullptr);
    ~ImageDialog() override;

    // Once it is accepted.
    [[nodiscard]] const PlotImage& choice() const { return choice_; }

  private:
    // Takes the choice from the fields, or shows what is wrong with them.
    void readFields();
    [[nodiscard]] QString takeFields();
    [[nodiscard]] QString sizeText() const;

    std::unique_ptr<Ui::ImageDialog> ui_;
    std::function<QSize(bool titles)> figureSize_;
    PlotImage choice_;
    QPushButton* save_;
};

}  // namespace zorvel
