// Shows problems and finished work at the edge of a window, and blocks nothing. Each message has a
// line and a sign, newest last; a very long one is shortened. A problem stays until it is
// dismissed; of many, the newest are shown, and the others after those have been dismissed. News
// makes room for later messages. A message may have a name, by which it is replaced or withdrawn,
// and an action, offered as a button: of several, that of the newest message. Main thread.
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
    // A problem that lasts until it is withdrawn cannot be dismissed.
    enum class Lasting { untilDismissed, untilWithdrawn };

    void addMessage(const QString& message, Tone tone = Tone::problem);
    // Replaces the message of that name if there is one, otherwise adds it. The same text again is
    // not announced again.
    void setMessage(const QString& name, const QString& message, const Action& action = {},
                    Lasting lasting = Lasting::untilDismissed);
    void withdraw(const QString& name);
    // All that have not been dismissed, whether shown or not.
    [[nodiscard]] QStringList messages() const;
    // Problem if any message is one.
    [[nodiscard]] Tone tone() const;

  public slots:
    // Removes all that is shown and can be dismissed.
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
        bool isShown = true;
    };

    void add(const Message& message);
    void showMessages();
    void announce();
    QLabel* addLine();
    [[nodiscard]] const Action* offeredAction() const;

    QVBoxLayout* column_;
    QList<QLabel*> lines_;  // of the messages shown, and hidden ones for reuse
    QLabel* others_;        // how many messages are not shown
    QPushButton* actionButton_;
    QToolButton* dismissButton_;
    QList<Message> messages_;
};

}  // namespace zorvel
