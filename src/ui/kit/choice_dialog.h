// Asks for one of a few things, each with a word on what it means, beside what to judge by. Return
// takes the one that is marked, the arrow keys and letters mark another, Escape cancels. Main
// thread.
#pragma once

#include <QDialog>

#include "ui/kit/alerts.h"

class QButtonGroup;
class QVBoxLayout;

namespace zorvel {

class ChoiceDialog : public QDialog {
    Q_OBJECT
  public:
    explicit ChoiceDialog(const Choice& choice, QWidget* parent = nullptr);

    [[nodiscard]] int chosen() const;

  private:
    void addExcerpt(const Choice& choice, QVBoxLayout& column);
    void addOptions(const Choice& choice, QVBoxLayout& column);
    void addButtons(const Choice& choice, QVBoxLayout& column);

    QButtonGroup* options_;
};

}  // namespace zorvel
