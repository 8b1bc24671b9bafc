// Tells of a problem, or of work that is done, at the edge of a window: it blocks nothing and stays
// until it is dismissed. Further messages join those that are still shown, newest last; a very long
// one is shortened. The strip is marked as a warning while one of its messages tells of a problem.
// A message may have a name, by which it is replaced or withdrawn, and an action, offered as a
// button beside the text: where several have one, that of the newest. Main thread.
#pragma once

#include <QFrame>
#include <QList>
#include <QStringList>
#include <functional>

class QLabel;
class QPushButton;
class QToolButton;

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

    void addMessage(const QString& message, Tone tone = Tone::problem);
    // In place of the message of that name if it is shown, otherwise as the newest. The same text
    // again changes nothing.
    void setMessage(const QString& name, const QString& message, const Action& action = {});
    void withdraw(const QString& name);
    [[nodiscard]] QStringList messages() const;
    // Of what is shown: a problem where there is one.
    [[nodiscard]] Tone tone() const;

  public slots:
    void dismiss();

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    struct Message {
        QString name;
        QString text;
        Action action;
        Tone tone = Tone::problem;
    };

    void showMessages();
    void announce();
    [[nodiscard]] qsizetype placeOf(const QString& name) const;
    [[nodiscard]] const Action* offeredAction() const;

    QLabel* text_;
    QPushButton* actionButton_;
    QToolButton* dismissButton_;
    QList<Message> messages_;
};

}  // namespace zorvel
