// Tells of a problem at the edge of a window: it blocks nothing and stays until it is dismissed.
// Further messages join those that are still shown, newest last; a very long one is shortened.
// Main thread.
#pragma once

#include <QFrame>
#include <QStringList>

class QLabel;
class QToolButton;

namespace zorvel {

class MessageStrip : public QFrame {
    Q_OBJECT
  public:
    explicit MessageStrip(QWidget* parent = nullptr);

    void addMessage(const QString& message);
    [[nodiscard]] const QStringList& messages() const { return messages_; }

  public slots:
    void dismiss();

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    QLabel* text_;
    QToolButton* dismissButton_;
    QStringList messages_;
};

}  // namespace zorvel
