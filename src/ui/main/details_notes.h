// The notes of a census as plain text of any length: Ctrl+Return and the loss of the focus commit,
// Escape brings back what is stored. Notes too long for an editor to be quick are shown in part,
// which cannot be edited. Undo within the text is the editor's own until it has committed. Main
// thread.
#pragma once

#include <QPlainTextEdit>
#include <optional>

#include "base/shared_text.h"

namespace zorvel {

class DetailsNotes : public QPlainTextEdit {
    Q_OBJECT
  public:
    explicit DetailsNotes(QWidget* parent = nullptr);

    // What was typed stays in its place.
    void showStored(const std::optional<SharedText>& notes);
    // The same, whatever was typed.
    void restore(const std::optional<SharedText>& notes);

    // Somebody typed something else than what is stored.
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
    QString shown_;  // the text as the editor gave it back when it was new
    bool whole_ = true;
};

}  // namespace zorvel
