#include "ui/kit/alerts.h"

#include <QButtonGroup>
#include <QDialog>
#include <QDialogButtonBox>
#include <QFileInfo>
#include <QFontDatabase>
#include <QLabel>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>
#include <utility>

#include "platform/file_names.h"
#include "platform/job_queue.h"
#include "ui/kit/look.h"
#include "ui/kit/shown_text.h"
#include "ui/kit/small_widgets.h"
#include "ui_choice_dialog.h"

namespace zorvel {

namespace {

constexpr qsizetype longestAlert = 600;  // characters
constexpr int leastAlertWidth = 340;     // of the texts, in pixels
constexpr qsizetype longestWord = 60;
constexpr qsizetype longestQuestion = 300;

// Of a text that may consist of several paragraphs.
QString fitForAlert(const QString& text) {
    QStringList lines = shortened(text, longestAlert).split('\n');
    for (QString& line : lines) line = withShortWords(oneLine(line), longestWord);
    return lines.join('\n');
}

// Deleted with its parent if that closes while it waits.
QPointer<QMessageBox> warningBox(QWidget* parent, const QString& text,
                                 const QString& informativeText) {
    QPointer<QMessageBox> box(new QMessageBox(parent));
    box->setIcon(QMessageBox::Warning);
    box->setTextFormat(Qt::PlainText);
    box->setText(fitForAlert(oneLine(text)));
    box->setInformativeText(fitForAlert(informativeText));
    if (auto* label = box->findChild<QLabel*>("qt_msgbox_label")) {
        label->setFont(scaledFont(label->font(), 1));
        label->setMinimumWidth(leastAlertWidth);
    }
    return box;
}

void addOptions(QVBoxLayout& rows, const Choice& choice, QButtonGroup& group) {
    for (int i = 0; i < choice.options.size(); ++i) {
        const QString meaning = choice.options[i].section('\t', 1);
        auto* button = new QRadioButton(choice.options[i].section('\t', 0, 0));
        rows.addWidget(button);
        button->setObjectName(QString("choice%1").arg(i));
        button->setChecked(i == choice.preselected);
        button->setAccessibleDescription(meaning);
        group.addButton(button, i);
        auto* label = new QLabel(meaning);
        rows.addWidget(label);
        label->setTextFormat(Qt::PlainText);
        label->setForegroundRole(secondaryText);
        label->setContentsMargins(20, 0, 0, 6);
        if (button->isChecked()) button->setFocus();
    }
}

}  // namespace

bool mayReplace(Alerts& alerts, QWidget* parent, const QString& path) {
    const QFileInfo file(path);
    if (!file.exists()) return true;
    const int answer =
        alerts.ask(parent, {QString("Replace “%1”?").arg(file.fileName()),
                            "A file of that name already exists. Its content will be lost.",
                            {"Replace", "Cancel"},
                            0});
    return answer == 0;
}

// The queue itself receives, since the window may have gone.
void writeInBackground(JobQueue& jobs, Alerts& alerts, QWidget* window, const QString& path,
                       const QString& failure, ByteProducer produce,
                       std::function<void(bool there)> written) {
    jobs.startWrite(
        &jobs,
        [path, produce = std::move(produce)] {
            const std::optional<Problem> problem = writeFileWhole(encodedPath(path), produce);
            return problem ? qt_error_string(problem->systemError) : QString();
        },
        [&alerts, parent = QPointer<QWidget>(window), failure,
         written = std::move(written)](const QString& problem) {
            written(problem.isEmpty());
            if (!problem.isEmpty()) alerts.warn(parent, failure, problem);
        });
}

int Alerts::ask(QWidget* parent, const Question& question) {
    const QPointer<QMessageBox> alert = warningBox(parent, question.text, question.informativeText);
    const int last = static_cast<int>(question.buttons.size()) - 1;
    for (int i = 0; i <= last; ++i) {
        const QMessageBox::ButtonRole role = i == last ? QMessageBox::RejectRole
                                             : i == question.destructive
                                                 ? QMessageBox::DestructiveRole
                                                 : QMessageBox::AcceptRole;
        QPushButton* button = alert->addButton(question.buttons[i], role);
        button->setProperty("index", i);
        if (i == (question.destructive == 0 ? last : 0)) {
            alert->setDefaultButton(button);
            button->setProperty(primaryButtonProperty, true);
        }
        if (i == last) alert->setEscapeButton(button);
    }
    alert->exec();
    if (!alert) return last;
    const QAbstractButton* clicked = alert->clickedButton();
    const int answer = clicked != nullptr ? clicked->property("index").toInt() : last;
    delete alert;
    return answer;
}

// Lines of the excerpt that are too long for the card are cut at its edge.
int Alerts::choose(QWidget* parent, const Choice& choice) {
    const QPointer<QDialog> dialog(new QDialog(parent));
    Ui::ChoiceDialog ui;
    ui.setupUi(dialog);
    dialog->setWindowTitle(choice.title);
    ui.choiceText->setText(oneLine(shortened(choice.text, longestQuestion)));
    ui.choiceText->setFont(scaledFont(dialog->font(), 1.1));
    ui.choiceExcerpt->setText(choice.excerpt);
    ui.choiceExcerpt->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    ui.excerptCard->setVisible(!choice.excerpt.isEmpty());
    auto* group = new QButtonGroup(dialog);
    addOptions(*ui.optionsLayout, choice, *group);
    ui.choiceInformation->setText(oneLine(shortened(choice.informativeText, longestQuestion)));
    ui.choiceInformation->setForegroundRole(secondaryText);
    ui.choiceInformation->setVisible(!choice.informativeText.isEmpty());
    // After the options, which Tab reaches in the order in which they are made.
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Cancel, dialog);
    ui.choiceLayout->addWidget(buttons);
    QPushButton* accept = buttons->addButton(choice.accept, QDialogButtonBox::AcceptRole);
    accept->setObjectName("acceptChoiceButton");
    accept->setProperty(primaryButtonProperty, true);
    accept->setDefault(true);
    QObject::connect(buttons, &QDialogButtonBox::accepted, dialog, &QDialog::accept);
    QObject::connect(buttons, &QDialogButtonBox::rejected, dialog, &QDialog::reject);
    const bool accepted = dialog->exec() == QDialog::Accepted;
    const int chosen = dialog && accepted ? group->checkedId() : -1;
    delete dialog;
    return chosen;
}

void Alerts::warn(QWidget* parent, const QString& text, const QString& informativeText) {
    const QPointer<QMessageBox> alert = warningBox(parent, text, informativeText);
    alert->addButton(QMessageBox::Ok);
    alert->exec();
    delete alert;
}

}  // namespace zorvel
