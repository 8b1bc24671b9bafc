#include "app/preferences_view_controller.h"

#include <QAbstractButton>
#include <QButtonGroup>
#include <QHideEvent>
#include <QLayout>
#include <QLineEdit>
#include <QShowEvent>
#include <QSignalBlocker>

#include "base/console.h"
#include "base/numbers.h"
#include "model/typed_values.h"
#include "platform/preferences.h"
#include "ui/kit/look.h"
#include "ui_preferences_view.h"

namespace zorvel {

namespace {

constexpr int sampleSizeTag = 1001;
constexpr int quotaTag = 1002;
constexpr int level95Tag = 95;
constexpr int level99Tag = 99;

int tagOf(const QObject& object) {
    return object.property("tag").toInt();
}

QString shortest(double value) {
    return QString::fromStdString(shortestText(value));
}

}  // namespace

PreferencesViewController::PreferencesViewController(ColorPanel& colors, QWidget* parent)
    : QWidget(parent), ui_(std::make_unique<Ui::PreferencesView>()) {
    ui_->setupUi(this);
    ui_->plotColorWell->setPanel(colors);
    viewDidLoad();
}

PreferencesViewController::~PreferencesViewController() = default;

// The layout's hint has the height that the texts need at another width.
QSize PreferencesViewController::sizeHint() const {
    return {minimumWidth(), heightForWidth(minimumWidth())};
}

void PreferencesViewController::viewDidLoad() {
    for (QLabel* heading : {ui_->metricsHeading, ui_->plotHeading}) {
        heading->setFont(scaledFont(font(), 1.15));
    }
    for (QLineEdit* field :
         {ui_->rarefactionSampleSizeValueTextField, ui_->sqsQuotaValueTextField}) {
        connect(field, &QLineEdit::editingFinished, this, [this, field] { editingDidEnd(field); });
    }
    connect(ui_->rarefactionSampleSizeValueTextField, &QLineEdit::textChanged, this,
            &PreferencesViewController::noteSampleSize);
    connect(ui_->sqsQuotaValueTextField, &QLineEdit::textChanged, this,
            &PreferencesViewController::noteQuota);
    auto* levels = new QButtonGroup(this);
    for (QAbstractButton* button : {static_cast<QAbstractButton*>(ui_->confidence95Button),
                                    static_cast<QAbstractButton*>(ui_->confidence99Button)}) {
        levels->addButton(button);
        connect(button, &QAbstractButton::clicked, this,
                [this, button] { confidenceButtonTapped(button); });
    }
    connect(ui_->plotColorWell, &ColorWell::colorDidChange, this,
            &PreferencesViewController::colorWellTapped);
    connect(ui_->colorPalette, &ColorPalette::colorChosen, ui_->plotColorWell, &ColorWell::choose);
    connect(ui_->closeButton, &QAbstractButton::clicked, this,
            &PreferencesViewController::closeRequested);
    for (QLabel* line : {ui_->confidenceNote, ui_->colorNote, ui_->storingNote}) {
        line->setForegroundRole(secondaryText);
    }
}

void PreferencesViewController::viewWillAppear() {
    const Preferences preferences;
    ui_->rarefactionSampleSizeValueTextField->setText(
        QString::fromStdString(integerText(preferences.rarefactionSize())));
    ui_->sqsQuotaValueTextField->setText(
        QString::fromStdString(fixedText(preferences.sqsQuota(), 2)));
    // The first field has the focus: typing replaces its number.
    ui_->rarefactionSampleSizeValueTextField->selectAll();
    noteSampleSize();
    noteQuota();
    showColor();
    showConfidence();
}

void PreferencesViewController::showAgain() {
    QLineEdit* const size = ui_->rarefactionSampleSizeValueTextField;
    QLineEdit* const quota = ui_->sqsQuotaValueTextField;
    for (QLineEdit* field : {size, quota}) {
        if (field->isModified()) editingDidEnd(field);
    }
    viewWillAppear();
    // The quota is shown rounded, and must not be stored rounded because the focus leaves it.
    const QSignalBlocker blocker(quota);
    size->setFocus(Qt::ShortcutFocusReason);
}

void PreferencesViewController::showConfidence() {
    const double level = Preferences().confidence();
    if (level != 0.95 && level != 0.99) {
        writeConsoleLine("unexpected confidence level in Preferences: " +
                         shortestTextWithPoint(level));
    }
    (level == 0.99 ? ui_->confidence99Button : ui_->confidence95Button)->setChecked(true);
}

void PreferencesViewController::showColor() {
    const QColor color = Preferences().plotColor();
    ui_->plotColorWell->showColor(color);
    ui_->colorPalette->showUsed(color);
}

void PreferencesViewController::viewWillDisappear() {
    storeSampleSize(ui_->rarefactionSampleSizeValueTextField->text());
    storeQuota(ui_->sqsQuotaValueTextField->text());
    emit preferencesDidChange();
}

void PreferencesViewController::editingDidEnd(QObject* sender) {
    const auto* field = qobject_cast<QLineEdit*>(sender);
    if (field == nullptr) return;
    if (tagOf(*field) == sampleSizeTag) storeSampleSize(field->text());
    if (tagOf(*field) == quotaTag) storeQuota(field->text());
    emit textDidEndEditing();
}

void PreferencesViewController::storeSampleSize(const QString& text) {
    if (const auto size = parseTypedSampleSize(text.toStdString())) {
        Preferences().setRarefactionSize(size.value());
    }
    noteSampleSize();
}

void PreferencesViewController::storeQuota(const QString& text) {
    if (const auto quota = parseTypedQuota(text.toStdString())) {
        Preferences().setSqsQuota(quota.value());
    }
    noteQuota();
}

void PreferencesViewController::confidenceButtonTapped(QObject* sender) {
    const auto* button = qobject_cast<QAbstractButton*>(sender);
    if (button == nullptr) return;
    const int tag = tagOf(*button);
    if (tag != level95Tag && tag != level99Tag) {
        writeConsoleLine("unexpected tag for the confidence radio button: " + integerText(tag));
    }
    Preferences().setConfidence(tag == level99Tag ? 0.99 : 0.95);
    emit plotPreferencesDidChange();
}

void PreferencesViewController::colorWellTapped() {
    Preferences().setPlotColor(ui_->plotColorWell->color());
    ui_->colorPalette->showUsed(ui_->plotColorWell->color());
    emit plotPreferencesDidChange();
}

void PreferencesViewController::noteSampleSize() {
    QLineEdit& field = *ui_->rarefactionSampleSizeValueTextField;
    const auto size = parseTypedSampleSize(field.text().toStdString());
    QString note;
    if (!size) {
        note = QString("%1 %2 stays.").arg(size.problem()).arg(Preferences().rarefactionSize());
    } else if (const auto limited = Preferences::limitedSize(size.value());
               limited != size.value()) {
        note = QString("Stored as %1, the smallest sample.").arg(limited);
    }
    showNote(field, *ui_->sampleSizeNote, "Specimens, or censuses, to which richness is rarefied.",
             note);
}

// The stored value may have more digits than are shown.
void PreferencesViewController::noteQuota() {
    QLineEdit& field = *ui_->sqsQuotaValueTextField;
    const auto quota = parseTypedQuota(field.text().toStdString());
    const double stored = Preferences().sqsQuota();
    QString note;
    if (!quota) {
        note = QString("%1 %2 stays.").arg(quota.problem(), shortest(stored));
    } else if (const double limited = Preferences::limitedQuota(quota.value());
               limited != quota.value()) {
        note = QString("Stored as %1: a quota is from 0 to 1.").arg(limited);
    } else if (!field.isModified() && stored != quota.value()) {
        note = QString("Shown rounded; the stored value is %1.").arg(shortest(stored));
    }
    showNote(field, *ui_->quotaNote, "Share of all specimens that the species drawn must cover.",
             note);
}

void PreferencesViewController::showNote(QLineEdit& field, QLabel& line, const QString& purpose,
                                         const QString& note) {
    line.setText(note.isEmpty() ? purpose : note);
    field.setAccessibleDescription(line.text());
    line.setForegroundRole(note.isEmpty() ? secondaryText : problemText);
}

// Minimising does not count as closing.
void PreferencesViewController::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    if (!event->spontaneous()) viewWillAppear();
}

void PreferencesViewController::hideEvent(QHideEvent* event) {
    if (!event->spontaneous()) viewWillDisappear();
    QWidget::hideEvent(event);
}

PreferencesWindowController::PreferencesWindowController(ColorPanel& colors)
    : PlacedWindow(60, 60), viewController_(new PreferencesViewController(colors, this)) {
    setObjectName("PreferencesWindow");
    setWindowTitle("Preferences");
    setAttribute(Qt::WA_DeleteOnClose);
    setAttribute(Qt::WA_QuitOnClose, false);
    setCentralWidget(viewController_);
    layout()->setSizeConstraint(QLayout::SetFixedSize);
    connect(viewController_, &PreferencesViewController::closeRequested, this, &QWidget::close);
}

}  // namespace zorvel
