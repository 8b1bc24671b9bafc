#include "ui/main/details_view.h"

#include <QLabel>
#include <utility>
#include <vector>

#include "base/numbers.h"
#include "model/edits.h"
#include "model/typed_values.h"
#include "ui/kit/look.h"
#include "ui/main/details_fields.h"
#include "ui_details_view.h"

namespace zorvel {

struct DetailsView::Line {
    DetailsField* field = nullptr;
    QString name;
    std::function<QString(const Census&)> shown;
    // Stores the typed text in that context, or returns why it cannot be stored.
    std::function<QString(ObjectContext&, const Census&, const std::string&)> store;
};

namespace {

// Stores a detail: read by parse, written by edit.
template <class Parse, class Edit>
auto storing(Parse parse, Edit edit) {
    return [parse, edit](ObjectContext& context, const Census& census, const std::string& text) {
        const auto value = parse(text);
        if (!value) return QString(value.problem());
        edit(context, census, value.value());
        return QString();
    };
}

}  // namespace

DetailsView::DetailsView(QWidget* parent)
    : QWidget(parent), ui_(std::make_unique<Ui::DetailsView>()) {
    ui_->setupUi(this);
    ui_->notesLabel->setContentsMargins(0, 6, 0, 0);  // in line with the first line of the notes
    setUpLines();
    setUpNotes();
    for (QLabel* label : {ui_->latitudeLabel, ui_->longitudeLabel, ui_->dateLabel, ui_->notesLabel,
                          ui_->notesProblem}) {
        label->setForegroundRole(secondaryText);
    }
    showCensus(std::nullopt);
}

DetailsView::~DetailsView() = default;

void DetailsView::setUpLines() {
    addLine(ui_->latitudeTextField, "Latitude", latitudeText,
            storing(parseTypedLatitude, editLatitude));
    addLine(ui_->longitudeTextField, "Longitude", longitudeText,
            storing(parseTypedLongitude, editLongitude));
    addLine(ui_->dateTextField, "Date", dateText, storing(parseTypedTime, editTimeStamp));
    ui_->latitudeTextField->setProblemLabel(ui_->latitudeProblem);
    ui_->longitudeTextField->setProblemLabel(ui_->longitudeProblem);
    ui_->dateTextField->setProblemLabel(ui_->dateProblem);
}

void DetailsView::addLine(
    DetailsField* field, const QString& name, std::function<QString(const Census&)> shown,
    std::function<QString(ObjectContext&, const Census&, const std::string&)> store) {
    lines_.push_back(std::make_unique<Line>(Line{field, name, std::move(shown), std::move(store)}));
    Line& line = *lines_.back();
    connect(field, &DetailsField::commitRequested, this, [this, &line] { commitLine(line); });
    connect(field, &DetailsField::textChanged, this, &DetailsView::textTyped);
}

void DetailsView::setUpNotes() {
    connect(ui_->notesTextView, &DetailsNotes::commitRequested, this, &DetailsView::commitNotes);
    connect(ui_->notesTextView, &DetailsNotes::textChanged, this, &DetailsView::textTyped);
}

std::optional<Census> DetailsView::census() const {
    return context_ && census_ ? context_->census(*census_) : std::nullopt;
}

void DetailsView::showCensus(const std::optional<Census>& census) {
    const std::optional<RecordId> id = census ? std::optional(census->id()) : std::nullopt;
    if (id != census_) leaveCensus();
    census_ = id;
    for (const auto& line : lines_) {
        line->field->setEnabled(census.has_value());
        line->field->showStored(census ? line->shown(*census) : QString());
    }
    ui_->notesTextView->setEnabled(census.has_value());
    ui_->notesTextView->showStored(census ? census->notes() : std::nullopt);
    showNotesState();
}

// Stores or reports what was typed; the fields are empty afterwards.
void DetailsView::leaveCensus() {
    commit();
    const std::optional<Census> left = census();
    const QString gone = "The census was deleted.";
    for (const auto& line : lines_) {
        if (line->field->isTyped()) {
            const QString reason = left ? line->field->problem() : gone;
            emit textRefused(line->name, line->field->text(), reason);
        }
        line->field->restore({});
    }
    if (ui_->notesTextView->isTyped()) {
        emit textRefused("Notes", ui_->notesTextView->typedText(), gone);
    }
    ui_->notesTextView->restore(std::nullopt);
}

bool DetailsView::commit() {
    bool stored = true;
    for (const auto& line : lines_) {
        commitLine(*line);
        stored = stored && !line->field->isTyped();
    }
    commitNotes();
    return stored;
}

void DetailsView::commitLine(Line& line) {
    const std::optional<Census> shown = census();
    if (!shown) return;
    if (!line.field->isTyped()) return line.field->showStored(line.shown(*shown));
    const QString reason = line.store(*context_, *shown, line.field->text().toStdString());
    if (!reason.isEmpty()) return line.field->tellProblem(reason);
    line.field->restore(line.shown(*shown));
    context_->announceChanges();
}

void DetailsView::commitNotes() {
    const std::optional<Census> shown = census();
    if (!shown || !ui_->notesTextView->isTyped()) return;
    const int place = ui_->notesTextView->textCursor().position();
    editNotes(*context_, *shown, ui_->notesTextView->typedText().toStdString());
    ui_->notesTextView->restore(shown->notes());
    QTextCursor cursor = ui_->notesTextView->textCursor();
    cursor.setPosition(place);
    ui_->notesTextView->setTextCursor(cursor);
    showNotesState();
    context_->announceChanges();
}

void DetailsView::storeDrafts(ObjectContext& copy) const {
    const std::optional<Census> shown = census_ ? copy.census(*census_) : std::nullopt;
    if (!shown) return;
    for (const auto& line : lines_) {
        if (line->field->isTyped()) line->store(copy, *shown, line->field->text().toStdString());
    }
    const DetailsNotes& notes = *ui_->notesTextView;
    if (notes.isTyped()) editNotes(copy, *shown, notes.typedText().toStdString());
}

void DetailsView::tellProblems() {
    for (const auto& line : lines_) {
        if (line->field->problem().isEmpty()) continue;
        line->field->setFocus();
        emit textRefused(line->name, line->field->text(), line->field->problem());
        return;
    }
}

void DetailsView::showNotesState() {
    const std::optional<Census> shown = census();
    const bool whole = ui_->notesTextView->isWhole();
    ui_->notesProblem->setVisible(!whole);
    if (whole || !shown) return ui_->notesTextView->setAccessibleDescription({});
    const auto size = static_cast<qsizetype>(shown->notes()->view().size());
    ui_->notesProblem->setText(
        QString("Only the beginning is shown: these notes are too long (%1) to be edited here.")
            .arg(locale().formattedDataSize(size)));
    ui_->notesTextView->setAccessibleDescription(ui_->notesProblem->text());
}

QString latitudeText(const Census& census) {
    return QString::fromStdString(shortestText(census.latitude()));
}

QString longitudeText(const Census& census) {
    return QString::fromStdString(shortestText(census.longitude()));
}

QString dateText(const Census& census) {
    const std::optional<TimeStamp> time = census.timeStamp();
    return time ? QString::fromStdString(typedTimeText(*time)) : QString();
}

}  // namespace zorvel
