// Tells of problems and of work that is done, at the edge of a window, and blocks nothing. Each
// message has a line and a sign of its own, newest last; a very long one is shortened. A problem
// stays until it is dismissed; of many, the newest are shown, and the others after those have been
// dismissed. News makes room for later messages. A message may have a name, by which it is replaced
// or withdrawn, and an action, offered as a button beside the text: where several have one, that of
// the newest. Main thread.
#pragma once

#include <QFrame>
#include <QList>
#include <QStringList>
#include <functional>

class QLabel;
class QPushButton;
class QToolButton;
class QVBoxLayout;

namespace zorvel {

class MessageStrip : public QFrame {
    Q_OBJECT
  public:
    struct Action {
        QString title;
        std::function<void()> run;
    };

    explicit MessageStrip(QWidget* parent = nullptr);

    enum class Tone { problem, news };
    // What dismissing does to a problem: one that holds stays until it is withdrawn.
    enum class Lasting { untilDismissed, untilWithdrawn };

    void addMessage(const QString& message, Tone tone = Tone::problem);
    // In place of the message of that name if there is one, otherwise as the newest. The same text
    // again is not announced again.
    void setMessage(const QString& name, const QString& message, const Action& action = {},
                    Lasting lasting = Lasting::untilDismissed);
    void withdraw(const QString& name);
    // All that have not been dismissed, shown or not.
    [[nodiscard]] QStringList messages() const;
    // A problem where there is one.
    [[nodiscard]] Tone tone() const;
    // The messages of another strip, each in its tone, before those of this one.
    void takeMessages(const MessageStrip& other);

  public slots:
    // Of what is shown, all that can be dismissed.
    void dismiss();

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    struct Message {
        QString name;
        QString text;
        Action action;
        Tone tone = Tone::problem;
        Lasting lasting = Lasting::untilDismissed;
    };

    void add(const Message& message);
    void showMessages();
    void announce();
    QLabel* addLine();
    // Of those that can be dismissed, the oldest are not shown where there are many.
    static bool isOrdinaryProblem(const Message& message);
    [[nodiscard]] qsizetype hiddenCount() const;  // below 0 where there is room for more
    [[nodiscard]] QList<Message> shown() const;
    [[nodiscard]] qsizetype placeOf(const QString& name) const;
    [[nodiscard]] const Action* offeredAction() const;

    QVBoxLayout* column_;
    QList<QLabel*> lines_;  // as many as were ever shown at once
    QLabel* others_;        // how many are not shown
    QPushButton* actionButton_;
    QToolButton* dismissButton_;
    QList<Message> messages_;
};

}  // namespace zorvel
