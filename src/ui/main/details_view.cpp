#include "ui/main/details_view.h"

#include <QEvent>
#include <QKeyEvent>
#include <QTextDocument>
#include <algorithm>
#include <type_traits>

#include "base/numbers.h"
#include "model/edits.h"
#include "model/typed_values.h"
#include "ui/kit/look.h"
#include "ui/kit/shown_text.h"
#include "ui_details_view.h"

namespace zorvel {

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
    lines_ = {
        {ui_->latitudeTextField, ui_->latitudeProblem, latitudeText,
         storing(parseTypedLatitude, editLatitude)},
        {ui_->longitudeTextField, ui_->longitudeProblem, longitudeText,
         storing(parseTypedLongitude, editLongitude)},
        {ui_->dateTextField, ui_->dateProblem, dateText, storing(parseTypedTime, editTimeStamp)}};
    const auto follow = [this](auto* field) {
        using Field = std::remove_pointer_t<decltype(field)>;
        connect(field, &Field::commitRequested, this, &DetailsView::commit);
        connect(field, &Field::commitRequested, this, &DetailsView::editingDidEnd);
        connect(field, &Field::textChanged, this, &DetailsView::textTyped);
    };
    for (const Line& line : lines_) {
        line.field->setProblemLabel(line.problem);
        follow(line.field);
    }
    follow(ui_->notesTextView);
    for (QLabel* label : {ui_->latitudeLabel, ui_->longitudeLabel, ui_->dateLabel, ui_->notesLabel,
                          ui_->notesProblem}) {
        label->setForegroundRole(secondaryText);
    }
    showCensus(std::nullopt);
}

DetailsView::~DetailsView() = default;

std::optional<Census> DetailsView::census() const {
    return context_ && census_ ? context_->census(*census_) : std::nullopt;
}

void DetailsView::showCensus(const std::optional<Census>& census) {
    const std::optional<RecordId> id = census ? std::optional(census->id()) : std::nullopt;
    if (id != census_) leaveCensus();
    census_ = id;
    for (const Line& line : lines_) {
        line.field->setEnabled(census.has_value());
        line.field->showStored(census ? line.shown(*census) : QString());
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
    for (const Line& line : lines_) {
        if (line.field->isTyped()) {
            const QString reason = left ? line.field->problem() : gone;
            emit textRefused(line.field->accessibleName(), line.field->text(), reason);
        }
        line.field->restore({});
    }
    if (ui_->notesTextView->isTyped()) {
        emit textRefused("Notes", ui_->notesTextView->typedText(), gone);
    }
    ui_->notesTextView->restore(std::nullopt);
}

bool DetailsView::commit() {
    const std::optional<Census> shown = census();
    if (shown) {
        for (const Line& line : lines_) commitLine(line, *shown);
        commitNotes(*shown);
    }
    return std::none_of(lines_.begin(), lines_.end(),
                        [](const Line& line) { return line.field->isTyped(); });
}

void DetailsView::commitLine(const Line& line, const Census& census) {
    if (!line.field->isTyped()) return line.field->showStored(line.shown(census));
    const QString reason = line.store(*context_, census, line.field->text().toStdString());
    if (!reason.isEmpty()) return line.field->tellProblem(reason);
    line.field->restore(line.shown(census));
    context_->announceChanges();
}

void DetailsView::commitNotes(const Census& census) {
    if (!ui_->notesTextView->isTyped()) return;
    const int place = ui_->notesTextView->textCursor().position();
    editNotes(*context_, census, ui_->notesTextView->typedText().toStdString());
    ui_->notesTextView->restore(census.notes());
    QTextCursor cursor = ui_->notesTextView->textCursor();
    cursor.setPosition(place);
    ui_->notesTextView->setTextCursor(cursor);
    showNotesState();
    context_->announceChanges();
}

void DetailsView::storeDrafts(ObjectContext& copy) const {
    const std::optional<Census> shown = census_ ? copy.census(*census_) : std::nullopt;
    if (!shown) return;
    for (const Line& line : lines_) {
        if (line.field->isTyped()) line.store(copy, *shown, line.field->text().toStdString());
    }
    const DetailsNotes& notes = *ui_->notesTextView;
    if (notes.isTyped()) editNotes(copy, *shown, notes.typedText().toStdString());
}

void DetailsView::tellProblems() {
    for (const Line& line : lines_) {
        if (line.field->problem().isEmpty()) continue;
        line.field->setFocus();
        emit textRefused(line.field->accessibleName(), line.field->text(), line.field->problem());
        return;
    }
}

void DetailsView::showNotesState() {
    const std::optional<Census> shown = census();
    const bool whole = !ui_->notesTextView->isReadOnly();
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

DetailsField::DetailsField(QWidget* parent) : QLineEdit(parent) {
    connect(this, &QLineEdit::textEdited, this, [this] { tellProblem({}); });
}

void DetailsField::showStored(const QString& text) {
    if (isTyped()) {
        stored_ = text;
    } else {
        restore(text);
    }
}

void DetailsField::restore(const QString& text) {
    stored_ = text;
    if (text != this->text() || isModified()) setText(text);
    if (!hasFocus()) setCursorPosition(0);
    tellProblem({});
}

void DetailsField::tellProblem(const QString& reason) {
    setAccessibleDescription(reason);
    problemLabel_->setForegroundRole(problemText);
    problemLabel_->setText(reason);
    problemLabel_->setVisible(!reason.isEmpty());
    makeRoomForProblem();
}

// A splitter does not ask for the height that a text needs at its width.
void DetailsField::makeRoomForProblem() {
    problemLabel_->setMinimumHeight(problem().isEmpty() ? 0
                                                        : problemLabel_->heightForWidth(width()));
}

void DetailsField::resizeEvent(QResizeEvent* event) {
    QLineEdit::resizeEvent(event);
    makeRoomForProblem();
}

bool DetailsField::event(QEvent* event) {
    if (!isTyped() && isUndoKey(*event)) {
        event->ignore();
        return false;
    }
    return QLineEdit::event(event);
}

void DetailsField::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
        case Qt::Key_Return:
        case Qt::Key_Enter:
            emit commitRequested();
            if (problem().isEmpty()) selectAll();
            return;
        case Qt::Key_Escape:
            restore(stored_);
            selectAll();
            return;
        default:
            QLineEdit::keyPressEvent(event);
    }
}

void DetailsField::focusOutEvent(QFocusEvent* event) {
    QLineEdit::focusOutEvent(event);
    // Opening the field's context menu does not commit.
    if (event->reason() != Qt::PopupFocusReason) emit commitRequested();
}

namespace {
constexpr qsizetype longestNotes = 20'000;  // characters
}  // namespace

DetailsNotes::DetailsNotes(QWidget* parent) : QPlainTextEdit(parent) {
    setTabChangesFocus(true);
    document()->setDocumentMargin(4);
    setFrameStyle(frameStyle());  // lets the style draw the frame of a multi-line text
}

bool DetailsNotes::isTyped() const {
    return !isReadOnly() && document()->isModified() && typedText() != shown_;
}

QString DetailsNotes::typedText() const {
    QString text = document()->toRawText();
    text.replace(QChar::ParagraphSeparator, '\n');
    return text;
}

void DetailsNotes::showStored(const std::optional<SharedText>& notes) {
    // If they are shown already, the editor keeps its cursor and its undo.
    if (stored_ == notes && !document()->isModified()) return;
    if (isTyped()) {
        stored_ = notes;
    } else {
        restore(notes);
    }
}

void DetailsNotes::restore(const std::optional<SharedText>& notes) {
    stored_ = notes;
    // Enough bytes for that many characters and one more.
    const std::string_view all = notes ? notes->view() : std::string_view();
    const std::string_view start = all.substr(0, 4 * (longestNotes + 1));
    const QString text = QString::fromUtf8(start);
    setPlainText(shortened(text, longestNotes));
    shown_ = typedText();
    document()->setModified(false);
    setReadOnly(start.size() < all.size() || text.size() > longestNotes);
}

bool DetailsNotes::event(QEvent* event) {
    if (event->type() == QEvent::FocusIn || event->type() == QEvent::FocusOut) {
        update();  // the frame shows the focus
    }
    if (!isTyped() && isUndoKey(*event)) {
        event->ignore();
        return false;
    }
    return QPlainTextEdit::event(event);
}

void DetailsNotes::keyPressEvent(QKeyEvent* event) {
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (isReturn && event->modifiers().testFlag(Qt::ControlModifier)) {
        emit commitRequested();
    } else if (event->key() == Qt::Key_Escape) {
        if (isTyped()) restore(stored_);
    } else {
        QPlainTextEdit::keyPressEvent(event);
    }
}

void DetailsNotes::focusOutEvent(QFocusEvent* event) {
    QPlainTextEdit::focusOutEvent(event);
    // Opening the editor's context menu does not commit.
    if (event->reason() != Qt::PopupFocusReason) emit commitRequested();
}

}  // namespace zorvel
