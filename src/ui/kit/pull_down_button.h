// A flat button that is nothing but the face of its menu: a click, the space bar or the down arrow
// opens it. Main thread.
#pragma once

#include <QToolButton>

namespace zorvel {

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
