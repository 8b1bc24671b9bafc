#include "ui/analysis/image_dialog.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QEvent>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <cmath>
#include <utility>

#include "base/numbers.h"
#include "model/typed_values.h"
#include "ui/analysis/plot_files.h"
#include "ui/kit/look.h"
#include "ui/kit/look_style.h"

namespace zorvel {

namespace {

constexpr int fieldWidth = 80;  // pixels
constexpr int noteWidth = 320;

QString centimetres(double value) {
    return QString::fromStdString(fixedText(value, 1));
}

// NaN where the text is no number. A comma is a point too.
double typedWidth(const QString& text) {
    const std::string number = text.trimmed().replace(',', '.').toStdString();
    return parseWholeDouble(number).value_or(std::nan(""));
}

}  // namespace

ImageDialog::ImageDialog(const PlotImage& proposed, std::function<QSize(bool)> figureSize,
                         QWidget* parent)
    : QDialog(parent), figureSize_(std::move(figureSize)), choice_(proposed) {
    setObjectName("imageDialog");
    setWindowTitle(tr("Save Image"));
    auto* form = new QFormLayout(this);
    form->setContentsMargins(20, 20, 20, 16);
    form->setHorizontalSpacing(12);
    form->setVerticalSpacing(10);
    addFormats(*form);
    width_ = addField(*form, "imageWidthField", tr("&Width:"),
                      QString::fromStdString(shortestText(proposed.widthCm)), tr("cm"));
    resolution_ = addField(*form, "imageResolutionField", tr("&Resolution:"),
                           QString::number(proposed.dpi), tr("dots per inch"));
    titles_ = new QCheckBox(tr("&Titles of the axes and name above the plot"), this);
    titles_->setObjectName("imageTitlesBox");
    titles_->setChecked(proposed.titles);
    connect(titles_, &QCheckBox::toggled, this, &ImageDialog::readFields);
    form->addRow(QString(), titles_);
    note_ = new QLabel(this);
    note_->setObjectName("imageNote");
    note_->setTextFormat(Qt::PlainText);
    note_->setWordWrap(true);
    note_->setMinimumSize(noteWidth, 2 * note_->fontMetrics().lineSpacing());
    note_->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    form->addRow(note_);
    addButtons();
    width_->setFocus();
    width_->selectAll();
    readFields();
}

void ImageDialog::addFormats(QFormLayout& form) {
    auto* row = new QHBoxLayout;
    row->setSpacing(16);
    const auto add = [&](const char* name, const QString& title) {
        auto* button = new QRadioButton(title, this);
        button->setObjectName(name);
        connect(button, &QRadioButton::toggled, this, &ImageDialog::readFields);
        row->addWidget(button);
        return button;
    };
    png_ = add("pngButton", tr("&PNG image"));
    svg_ = add("svgButton", tr("S&VG drawing"));
    row->addStretch(1);
    (choice_.svg ? svg_ : png_)->setChecked(true);
    form.addRow(tr("Format:"), row);
}

QLineEdit* ImageDialog::addField(QFormLayout& form, const char* name, const QString& title,
                                 const QString& value, const QString& unit) {
    auto* row = new QHBoxLayout;
    row->setSpacing(8);
    auto* field = new QLineEdit(value, this);
    field->setObjectName(name);
    field->setFixedWidth(fieldWidth);
    field->setAlignment(Qt::AlignRight);
    connect(field, &QLineEdit::textChanged, this, &ImageDialog::readFields);
    row->addWidget(field);
    row->addWidget(new QLabel(unit, this));
    row->addStretch(1);
    form.addRow(title, row);
    qobject_cast<QLabel*>(form.labelForField(row))->setBuddy(field);
    return field;
}

void ImageDialog::addButtons() {
    auto* buttons = new QDialogButtonBox(this);
    save_ = buttons->addButton(tr("&Save\u2026"), QDialogButtonBox::AcceptRole);
    save_->setObjectName("saveImageAsButton");
    save_->setProperty(primaryButtonProperty, true);
    save_->setDefault(true);
    buttons->addButton(QDialogButtonBox::Cancel);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    static_cast<QFormLayout*>(layout())->addRow(buttons);
}

void ImageDialog::readFields() {
    if (save_ == nullptr) return;  // not yet built
    resolution_->setEnabled(png_->isChecked());
    const QString problem = takeFields();
    save_->setEnabled(problem.isEmpty());
    showNote(problem.isEmpty() ? sizeText() : problem, !problem.isEmpty());
}

QString ImageDialog::takeFields() {
    choice_.svg = svg_->isChecked();
    choice_.titles = titles_->isChecked();
    choice_.widthCm = typedWidth(width_->text());
    if (!(choice_.widthCm >= PlotImage::leastWidth && choice_.widthCm <= PlotImage::mostWidth)) {
        return tr("A width is a number of centimetres from %1 to %2, such as 8.5.")
            .arg(PlotImage::leastWidth)
            .arg(PlotImage::mostWidth);
    }
    // What a drawing has no need of is not held against it.
    const auto dpi = parseTypedAbundance(resolution_->text().toStdString());
    const bool isDpi =
        dpi && dpi.value() >= PlotImage::leastDpi && dpi.value() <= PlotImage::mostDpi;
    if (isDpi) choice_.dpi = static_cast<int>(dpi.value());
    if (choice_.svg) return {};
    if (!isDpi) {
        return tr("A resolution is a whole number from %1 to %2, such as 300.")
            .arg(PlotImage::leastDpi)
            .arg(PlotImage::mostDpi);
    }
    const QSize pixels = pixelsOf(figureSize_(choice_.titles), choice_.widthCm, choice_.dpi);
    if (std::max(pixels.width(), pixels.height()) <= kMostImagePixels) return {};
    return tr("%L1 \u00d7 %L2 pixels are too many: no side may have more than %L3. Choose a "
              "smaller width or resolution.")
        .arg(pixels.width())
        .arg(pixels.height())
        .arg(kMostImagePixels);
}

QString ImageDialog::sizeText() const {
    const QSize figure = figureSize_(choice_.titles);
    const double height = choice_.widthCm * figure.height() / figure.width();
    QString size = tr("%1 \u00d7 %2 cm").arg(centimetres(choice_.widthCm), centimetres(height));
    if (choice_.svg) return size;
    const QSize pixels = pixelsOf(figure, choice_.widthCm, choice_.dpi);
    return tr("%1, %L2 \u00d7 %L3 pixels").arg(size).arg(pixels.width()).arg(pixels.height());
}

void ImageDialog::showNote(const QString& text, bool isProblem) {
    note_->setText(text);
    QPalette colors;
    const LookColors& look = lookColors(palette());
    colors.setColor(QPalette::WindowText, isProblem ? look.problem : look.secondary);
    note_->setPalette(colors);
    for (QLineEdit* field : {width_, resolution_}) field->setAccessibleDescription(text);
}

void ImageDialog::changeEvent(QEvent* event) {
    QDialog::changeEvent(event);
    if (event->type() == QEvent::PaletteChange) readFields();
}

}  // namespace zorvel
