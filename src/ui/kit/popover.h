// A frame inside a window that explains one of its parts, beside which it is shown. It blocks
// nothing. Escape, F1, Tab or a click elsewhere closes it, and the focus returns to where it was.
// Its text can be selected. Main thread.
#pragma once

#include <QFrame>
#include <QList>
#include <QPointer>
#include <QRect>
#include <QString>
#include <QStringList>
#include <utility>

class QLabel;
class QScrollArea;

namespace zorvel {

// The place of a popover of that size in its host: left of the anchor, or else right of it, or else
// over it; its middle at the height of the anchor's as far as the host has room.
QRect popoverPlace(const QSize& host, const QRect& anchor, const QSize& wanted);

struct Explanation {
    QString name;
    QString value;                               // "6.5 for North"
    QStringList paragraphs;                      // those that are empty are left out, as the next
    QList<std::pair<QString, QString>> entries;  // "Formula" and it
};

class Popover : public QFrame {
    Q_OBJECT
  public:
    // The one of the window, made when it is first needed.
    static Popover& of(QWidget& window);
    ~Popover() override;

    void setExplanation(const Explanation& explanation);
    // Takes the focus. anchor: in the host's coordinates; a click on it closes nothing.
    void showBeside(const QRect& anchor);
    void dismiss();

  protected:
    bool event(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    bool focusNextPrevChild(bool next) override;
    void keyPressEvent(QKeyEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

  private:
    explicit Popover(QWidget* host);
    void place();
    void focusDidChange(QWidget* now);
    [[nodiscard]] bool contains(const QWidget* widget) const;

    QScrollArea* scroll_;
    QLabel* text_;
    QRect anchor_;
    QPointer<QWidget> focusBefore_;
};

}  // namespace zorvel
