// The details of the selected census: where, when, and notes. Each change is an edit of its own. A
// text that cannot be stored stays in its field with the reason below it; if another census is
// shown, textRefused() reports it. Main thread.
#pragma once

#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QString>
#include <QWidget>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/shared_text.h"
#include "store/object_context.h"

namespace Ui {
class DetailsView;
}

namespace zorvel {

class DetailsField;

class DetailsView : public QWidget {
    Q_OBJECT
  public:
    explicit DetailsView(QWidget* parent = nullptr);
    ~DetailsView() override;

    // Whose censuses are shown; must outlive the view or the next call. Call it before
    // showCensus().
    void setContext(ObjectContext& context) { context_ = &context; }

    // Another census, the same one after a change, or none. What was typed for another is stored
    // first, or reported.
    void showCensus(const std::optional<Census>& census);

    // Stores what was typed, as far as possible. False if something cannot be stored: its field
    // shows the reason.
    bool commit();
    // The same in a copy of the context; the fields stay as they are.
    void storeDrafts(ObjectContext& copy) const;
    // The first field with a text that cannot be stored takes the focus, and is reported.
    void tellProblems();

  signals:
    void textTyped();
    // Of a field; what was typed is stored by then, or cannot be.
    void editingDidEnd();
    // A detail was not stored: its name, the typed text, and a sentence that says why.
    void textRefused(const QString& detail, const QString& text, const QString& reason);

  private:
    // A field with the functions that show and store its detail.
    struct Line {
        DetailsField* field;
        QLabel* problem;
        std::function<QString(const Census&)> shown;
        // Stores the typed text in that context, or returns why it cannot be stored.
        std::function<QString(ObjectContext&, const Census&, const std::string&)> store;
    };
    void commitLine(const Line& line, const Census& census);
    void commitNotes(const Census& census);
    void leaveCensus();
    void showNotesState();
    [[nodiscard]] std::optional<Census> census() const;

    std::unique_ptr<Ui::DetailsView> ui_;
    std::vector<Line> lines_;
    ObjectContext* context_ = nullptr;
    std::optional<RecordId> census_;
};

// The texts of the details, each the shortest that reads back as the stored value.
QString latitudeText(const Census& census);   // degrees
QString longitudeText(const Census& census);  // degrees
// In the computer's time zone; empty if there is none.
QString dateText(const Census& census);

// A text that cannot be stored stays, with the reason below it.
class DetailsField : public QLineEdit {
    Q_OBJECT
  public:
    explicit DetailsField(QWidget* parent = nullptr);

    // Shows the reason; as wide as the field. Set it first.
    void setProblemLabel(QLabel* label) { problemLabel_ = label; }

    // The text of the stored value. Typed text stays.
    void showStored(const QString& text);
    // The same; typed text is dropped.
    void restore(const QString& text);

    // The user typed something other than what is stored.
    [[nodiscard]] bool isTyped() const { return isModified() && text() != stored_; }
    [[nodiscard]] QString problem() const { return accessibleDescription(); }
    // An empty reason removes it.
    void tellProblem(const QString& reason);

  signals:
    void commitRequested();

  protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

  private:
    void makeRoomForProblem();

    QString stored_;
    QLabel* problemLabel_ = nullptr;
};

// Notes too long for a fast editor are shown in part and cannot be edited. Undo within the text is
// the editor's own until it has committed.
class DetailsNotes : public QPlainTextEdit {
    Q_OBJECT
  public:
    explicit DetailsNotes(QWidget* parent = nullptr);

    // Typed text stays.
    void showStored(const std::optional<SharedText>& notes);
    // The same; typed text is dropped.
    void restore(const std::optional<SharedText>& notes);

    // The user typed something other than what is stored.
    [[nodiscard]] bool isTyped() const;
    // As it is to be stored: lines end in line feeds, no-break spaces stay.
    [[nodiscard]] QString typedText() const;
  signals:
    void commitRequested();

  protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

  private:
    std::optional<SharedText> stored_;
    QString shown_;  // the text as the editor returned it when it was new
};

}  // namespace zorvel
