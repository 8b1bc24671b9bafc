#include "ui/kit/alerts.h"

#include <QFileInfo>
#include <QLabel>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>

#include "ui/kit/choice_dialog.h"
#include "ui/kit/look.h"
#include "ui/kit/look_style.h"
#include "ui/kit/shown_text.h"

namespace zorvel {

namespace {

constexpr qsizetype longestAlert = 600;  // characters
constexpr int leastAlertWidth = 340;     // of the texts, in pixels
constexpr qsizetype longestWord = 60;

// Of a text that may consist of several paragraphs.
QString fitForAlert(const QString& text) {
    QStringList lines = shortened(text, longestAlert).split('\n');
    for (QString& line : lines) line = withShortWords(oneLine(line), longestWord);
    return lines.join('\n');
}

// Goes with its parent, should that close while it waits.
QPointer<QMessageBox> box(QWidget* parent, QMessageBox::Icon icon, const QString& text,
                          const QString& informativeText) {
    QPointer<QMessageBox> box(new QMessageBox(parent));
    box->setIcon(icon);
    box->setTextFormat(Qt::PlainText);
    box->setText(fitForAlert(oneLine(text)));
    box->setInformativeText(fitForAlert(informativeText));
    if (auto* label = box->findChild<QLabel*>("qt_msgbox_label")) {
        label->setFont(scaledFont(label->font(), 1, true));
        label->setMinimumWidth(leastAlertWidth);
    }
    return box;
}

}  // namespace

bool mayReplace(Alerts& alerts, QWidget* parent, const QString& path) {
    const QFileInfo file(path);
    if (!file.exists()) return true;
    const int answer = alerts.ask(
        parent,
        {QMessageBox::tr("Replace “%1”?").arg(file.fileName()),
         QMessageBox::tr("A file of that name is there already. What it holds will be lost."),
         {QMessageBox::tr("Replace"), QMessageBox::tr("Cancel")},
         0});
    return answer == 0;
}

int DesktopAlerts::ask(QWidget* parent, const Question& question) {
    const QPointer<QMessageBox> alert =
        box(parent, QMessageBox::Warning, question.text, question.informativeText);
    const int last = static_cast<int>(question.buttons.size()) - 1;
    for (int i = 0; i <= last; ++i) {
        const QMessageBox::ButtonRole role = i == last ? QMessageBox::RejectRole
                                             : i == question.destructive
                                                 ? QMessageBox::DestructiveRole
                                                 : QMessageBox::AcceptRole;
        QPushButton* button = alert->addButton(question.buttons[i], role);
        button->setProperty("place", i);
        if (i == (question.destructive == 0 ? last : 0)) {
            alert->setDefaultButton(button);
            button->setProperty(primaryButtonProperty, true);
        }
        if (i == last) alert->setEscapeButton(button);
    }
    alert->exec();
    if (!alert) return last;
    const QAbstractButton* clicked = alert->clickedButton();
    const int answer = clicked != nullptr ? clicked->property("place").toInt() : last;
    delete alert;
    return answer;
}

int DesktopAlerts::choose(QWidget* parent, const Choice& choice) {
    const QPointer<ChoiceDialog> dialog(new ChoiceDialog(choice, parent));
    const bool accepted = dialog->exec() == QDialog::Accepted;
    const int chosen = dialog && accepted ? dialog->chosen() : -1;
    delete dialog;
    return chosen;
}

void DesktopAlerts::warn(QWidget* parent, const QString& text, const QString& informativeText) {
    const QPointer<QMessageBox> alert = box(parent, QMessageBox::Warning, text, informativeText);
    alert->addButton(QMessageBox::Ok);
    alert->exec();
    delete alert;
}

}  // namespace zorvel
