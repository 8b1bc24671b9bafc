#include "ui/analysis/image_dialog.h"

#include <QDialog>
#include <QPushButton>
#include <algorithm>
#include <cmath>
#include <utility>

#include "base/numbers.h"
#include "model/typed_values.h"
#include "ui/analysis/plot_files.h"
#include "ui/kit/look.h"
#include "ui_image_dialog.h"

namespace zorvel {

namespace {

constexpr int noteWidth = 320;           // pixels
constexpr int mostImagePixels = 20'000;  // along each side

QString centimetres(double value) {
    return QString::fromStdString(fixedText(value, 1));
}

// NaN if the text is no number. A comma is a point too.
double typedWidth(const QString& text) {
    const std::string number = text.trimmed().replace(',', '.').toStdString();
    return parseWholeDouble(number).value_or(std::nan(""));
}

class ImageDialog : public QDialog {
  public:
    ImageDialog(const PlotImage& proposed, std::function<QSize(bool)> figureSize, QWidget& parent)
        : QDialog(&parent), figureSize_(std::move(figureSize)), choice_(proposed) {
        setAttribute(Qt::WA_DeleteOnClose);
        ui_.setupUi(this);
        save_ = ui_.buttonBox->addButton("&Save\u2026", QDialogButtonBox::AcceptRole);
        save_->setObjectName("saveImageAsButton");
        save_->setProperty(primaryButtonProperty, true);
        save_->setDefault(true);
        (proposed.svg ? ui_.svgButton : ui_.pngButton)->setChecked(true);
        ui_.imageWidthField->setText(QString::fromStdString(shortestText(proposed.widthCm)));
        ui_.imageResolutionField->setText(QString::number(proposed.dpi));
        ui_.imageTitlesBox->setChecked(proposed.titles);
        ui_.imageNote->setMinimumSize(noteWidth, 2 * ui_.imageNote->fontMetrics().lineSpacing());
        for (const QAbstractButton* button :
             std::initializer_list<QAbstractButton*>{ui_.pngButton, ui_.imageTitlesBox}) {
            connect(button, &QAbstractButton::toggled, this, &ImageDialog::readFields);
        }
        for (const QLineEdit* field : {ui_.imageWidthField, ui_.imageResolutionField}) {
            connect(field, &QLineEdit::textChanged, this, &ImageDialog::readFields);
        }
        connect(ui_.buttonBox, &QDialogButtonBox::accepted, this, &QDialog::accept);
        connect(ui_.buttonBox, &QDialogButtonBox::rejected, this, &QDialog::reject);
        ui_.imageWidthField->setFocus();
        ui_.imageWidthField->selectAll();
        readFields();
    }

    // Once it is accepted.
    [[nodiscard]] const PlotImage& choice() const { return choice_; }

  private:
    void readFields() {
        ui_.imageResolutionField->setEnabled(ui_.pngButton->isChecked());
        const QString problem = takeFields();
        const bool isProblem = !problem.isEmpty();
        const QString note = isProblem ? problem : sizeText();
        save_->setEnabled(!isProblem);
        ui_.imageNote->setText(note);
        ui_.imageNote->setForegroundRole(isProblem ? problemText : secondaryText);
        for (QLineEdit* field : {ui_.imageWidthField, ui_.imageResolutionField}) {
            field->setAccessibleDescription(note);
        }
    }

    // Takes the choice from the fields; what is wrong with them, or nothing.
    [[nodiscard]] QString takeFields() {
        choice_.svg = ui_.svgButton->isChecked();
        choice_.titles = ui_.imageTitlesBox->isChecked();
        choice_.widthCm = typedWidth(ui_.imageWidthField->text());
        if (!(choice_.widthCm >= PlotImage::leastWidth &&
              choice_.widthCm <= PlotImage::mostWidth)) {
            return QString("A width is a number of centimetres from %1 to %2, such as 8.5.")
                .arg(PlotImage::leastWidth)
                .arg(PlotImage::mostWidth);
        }
        // A drawing needs no resolution, so a wrong one is no problem then.
        const auto dpi = parseTypedAbundance(ui_.imageResolutionField->text().toStdString());
        const bool isDpi =
            dpi && dpi.value() >= PlotImage::leastDpi && dpi.value() <= PlotImage::mostDpi;
        if (isDpi) choice_.dpi = static_cast<int>(dpi.value());
        if (choice_.svg) return {};
        if (!isDpi) {
            return QString("A resolution is a whole number from %1 to %2, such as 300.")
                .arg(PlotImage::leastDpi)
                .arg(PlotImage::mostDpi);
        }
        const QSize pixels = pixelsOf(figureSize_(choice_.titles), choice_.widthCm, choice_.dpi);
        if (std::max(pixels.width(), pixels.height()) <= mostImagePixels) return {};
        return QString(
                   "%L1 \u00d7 %L2 pixels are too many: no side may have more than %L3. Choose a "
                   "smaller width or resolution.")
            .arg(pixels.width())
            .arg(pixels.height())
            .arg(mostImagePixels);
    }

    [[nodiscard]] QString sizeText() const {
        const QSize figure = figureSize_(choice_.titles);
        const double height = choice_.widthCm * figure.height() / figure.width();
        QString size =
            QString("%1 \u00d7 %2 cm").arg(centimetres(choice_.widthCm), centimetres(height));
        if (choice_.svg) return size;
        const QSize pixels = pixelsOf(figure, choice_.widthCm, choice_.dpi);
        return QString("%1, %L2 \u00d7 %L3 pixels")
            .arg(size)
            .arg(pixels.width())
            .arg(pixels.height());
    }

    Ui::ImageDialog ui_;
    std::function<QSize(bool titles)> figureSize_;
    PlotImage choice_;
    QPushButton* save_;
};

}  // namespace

void askForImage(const PlotImage& proposed, std::function<QSize(bool titles)> figureSize,
                 QWidget& owner, std::function<void(const PlotImage&)> chosen) {
    auto* dialog = new ImageDialog(proposed, std::move(figureSize), owner);
    QObject::connect(dialog, &QDialog::accepted, &owner,
                     [dialog, chosen = std::move(chosen)] { chosen(dialog->choice()); });
    dialog->open();
}

}  // namespace zorvel
