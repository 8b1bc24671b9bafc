// Small widgets of the program's look. Main thread.
#pragma once

#include <QAccessibleWidget>
#include <QFrame>
#include <QLabel>
#include <QTimer>
#include <QToolButton>

class QTextDocument;

namespace zorvel {

// So that a screen reader takes widgets of a class for what the role says. Again does nothing.
template <class Widget, QAccessible::Role role>
void setAccessibleRole() {
    QAccessible::installFactory(
        [](const QString& /*className*/, QObject* object) -> QAccessibleInterface* {
            auto* widget = qobject_cast<Widget*>(object);
            return widget != nullptr ? new QAccessibleWidget(widget, role) : nullptr;
        });
}

// A rounded ground for what belongs together, its rows separated by hairlines.
class Card : public QFrame {
    Q_OBJECT
  public:
    explicit Card(QWidget* parent = nullptr);

  protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
};

// A ring that turns while work runs, and is invisible otherwise. It keeps its room, so that nothing
// moves when it comes and goes.
class Spinner : public QWidget {
    Q_OBJECT
  public:
    explicit Spinner(QWidget* parent = nullptr);

    void startAnimation();
    void stopAnimation();
    [[nodiscard]] bool isAnimated() const { return timer_.isActive(); }
    [[nodiscard]] QSize sizeHint() const override { return {16, 16}; }

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    QTimer timer_;
    int step_ = 0;
};

// A line of plain text that takes the width there is, and ends in an ellipsis if that is too small.
class ElidedLabel : public QLabel {
    Q_OBJECT
  public:
    explicit ElidedLabel(QWidget* parent = nullptr);

    [[nodiscard]] QSize minimumSizeHint() const override;

  protected:
    void paintEvent(QPaintEvent* event) override;
};

// A label whose text wraps in any room: between words, and within a word that is too long for a
// line. What is selected in it is copied as it was set.
class WrappedLabel : public QLabel {
    Q_OBJECT
  public:
    explicit WrappedLabel(QWidget* parent = nullptr);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;
    [[nodiscard]] int heightForWidth(int width) const override;

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    QTextDocument* laidOut() const;
};

// A flat button that only opens its menu: by a click, the space bar, Return or the down arrow.
class PullDownButton : public QToolButton {
    Q_OBJECT
  public:
    explicit PullDownButton(QWidget* parent = nullptr);

    // At the end of the menu. name: of the action.
    QAction* addItem(const char* name, const QString& title);

  protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
};

}  // namespace zorvel
