// The editors of a census's details: a line for latitude, longitude or date, and the notes. Losing
// the focus commits, and so does Return or, in the notes, Ctrl+Return; Escape restores the stored
// text. Main thread.
#pragma once

#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <optional>

#include "base/shared_text.h"

namespace zorvel {

// A text that cannot be stored stays, with the reason below it.
class DetailsField : public QLineEdit {
    Q_OBJECT
  public:
    explicit DetailsField(QWidget* parent = nullptr);

    // Shows the reason; as wide as the field.
    void setProblemLabel(QLabel* label) { problemLabel_ = label; }

    // The text of the stored value. Typed text stays.
    void showStored(const QString& text);
    // The same; typed text is dropped.
    void restore(const QString& text);

    // The user typed something other than what is stored.
    [[nodiscard]] bool isTyped() const { return isModified() && text() != stored_; }
    [[nodiscard]] QString problem() const { return problem_; }
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
    QString problem_;
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
    // All of the notes are shown.
    [[nodiscard]] bool isWhole() const { return whole_; }

  signals:
    void commitRequested();

  protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

  private:
    std::optional<SharedText> stored_;
    QString shown_;  // the text as the editor returned it when it was new
    bool whole_ = true;
};

}  // namespace zorvel
