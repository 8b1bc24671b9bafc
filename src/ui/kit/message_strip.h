// Tells of a problem at the edge of a window: it blocks nothing and stays until it is dismissed.
// Further messages join those that are still shown, newest last; a very long one is shortened. A
// message may have a name, by which it is replaced or withdrawn, and an action, offered as a button
// beside the text: where several have one, that of the newest. Main thread.
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

    void addMessage(const QString& message);
    // In place of the message of that name if it is shown, otherwise as the newest. The same text
    // again changes nothing.
    void setMessage(const QString& name, const QString& message, const Action& action = {});
    void withdraw(const QString& name);
    [[nodiscard]] QStringList messages() const;

  public slots:
    void dismiss();

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    struct Message {
        QString name;
        QString text;
        Action action;
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
