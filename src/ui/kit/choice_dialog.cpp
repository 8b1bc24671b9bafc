#include "ui/kit/choice_dialog.h"

#include <QButtonGroup>
#include <QDialogButtonBox>
#include <QFontDatabase>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

#include "ui/kit/card.h"
#include "ui/kit/look.h"
#include "ui/kit/look_style.h"
#include "ui/kit/shown_text.h"
#include "ui/kit/wrapped_label.h"

namespace zorvel {

namespace {

constexpr int leastWidth = 520;             // pixels
constexpr qsizetype longestQuestion = 300;  // characters

QLabel* addText(QVBoxLayout& column, const QString& text, bool quiet = false) {
    auto* label = new WrappedLabel(column.parentWidget());
    label->setText(oneLine(shortened(text, longestQuestion)));
    if (quiet) label->setForegroundRole(QPalette::PlaceholderText);
    column.addWidget(label);
    return label;
}

}  // namespace

ChoiceDialog::ChoiceDialog(const Choice& choice, QWidget* parent)
    : QDialog(parent), options_(new QButtonGroup(this)) {
    setObjectName("choiceDialog");
    setWindowTitle(choice.title);
    setMinimumWidth(leastWidth);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(20, 20, 20, 16);
    column->setSpacing(12);
    QLabel* text = addText(*column, choice.text);
    text->setObjectName("choiceText");
    text->setFont(scaledFont(font(), 1.1, true));
    addExcerpt(choice, *column);
    addOptions(choice, *column);
    if (!choice.informativeText.isEmpty()) addText(*column, choice.informativeText, true);
    addButtons(choice, *column);
}

int ChoiceDialog::chosen() const {
    return options_->checkedId();
}

// Lines too long for the card are cut at its edge.
void ChoiceDialog::addExcerpt(const Choice& choice, QVBoxLayout& column) {
    if (choice.excerpt.isEmpty()) return;
    auto* card = new Card(this);
    auto* lines = new QLabel(card);
    lines->setObjectName("choiceExcerpt");
    lines->setTextFormat(Qt::PlainText);
    lines->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    lines->setText(choice.excerpt);
    lines->setTextInteractionFlags(Qt::TextSelectableByMouse);
    lines->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    lines->setAccessibleName(tr("First lines"));
    auto* inside = new QVBoxLayout(card);
    inside->setContentsMargins(12, 8, 12, 8);
    inside->addWidget(lines);
    column.addWidget(card);
}

void ChoiceDialog::addOptions(const Choice& choice, QVBoxLayout& column) {
    auto* rows = new QVBoxLayout;
    rows->setSpacing(2);
    column.addLayout(rows);
    for (int i = 0; i < choice.options.size(); ++i) {
        const QString title = choice.options[i].section('\t', 0, 0);
        const QString meaning = choice.options[i].section('\t', 1);
        auto* button = new QRadioButton(title, this);
        button->setObjectName(QString("choice%1").arg(i));
        button->setChecked(i == choice.preselected);
        button->setAccessibleDescription(meaning);
        options_->addButton(button, i);
        rows->addWidget(button);
        auto* label = new QLabel(meaning, this);
        label->setTextFormat(Qt::PlainText);
        label->setForegroundRole(QPalette::PlaceholderText);
        label->setContentsMargins(20, 0, 0, 6);
        rows->addWidget(label);
        if (button->isChecked()) button->setFocus();
    }
}

void ChoiceDialog::addButtons(const Choice& choice, QVBoxLayout& column) {
    auto* buttons = new QDialogButtonBox(this);
    QPushButton* accept = buttons->addButton(choice.accept, QDialogButtonBox::AcceptRole);
    accept->setObjectName("acceptChoiceButton");
    accept->setProperty(primaryButtonProperty, true);
    accept->setDefault(true);
    buttons->addButton(QDialogButtonBox::Cancel);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    column.addWidget(buttons);
}

}  // namespace zorvel
