// One detail of a record as a line that can be typed into: Return and the loss of the focus commit,
// Escape brings back what is stored. A text that cannot be stored stays, with the reason below it.
// What is shown is not touched until somebody types. Main thread.
#pragma once

#include <QLabel>
#include <QLineEdit>

namespace zorvel {

class DetailsField : public QLineEdit {
    Q_OBJECT
  public:
    explicit DetailsField(QWidget* parent = nullptr);

    // Where the reason is told: as wide as the field.
    void setProblemLabel(QLabel* label) { problemLabel_ = label; }

    // The text of the stored value. What was typed stays in its place.
    void showStored(const QString& text);
    // The same, whatever was typed.
    void restore(const QString& text);

    // Somebody typed something else than what is stored.
    [[nodiscard]] bool isTyped() const { return isModified() && text() != stored_; }
    [[nodiscard]] QString problem() const { return problem_; }
    // An empty reason withdraws it.
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

}  // namespace zorvel
