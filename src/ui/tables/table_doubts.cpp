#include "ui/tables/table_doubts.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <algorithm>
#include <utility>
#include <vector>

#include "tables/texts.h"
#include "ui/kit/look.h"

namespace zorvel {

namespace {

struct DoubtAnswer {
    QString title;
    TableCorrection correct;
};
struct DoubtQuestion {
    QString text;
    std::vector<DoubtAnswer> answers;
};

DoubtQuestion questionOf(TableDoubt doubt, const TablePreview& preview) {
    const TableReading& reading = preview.reading;
    DoubtQuestion question;
    const auto ask = [&](const QString& what) {
        question.text = QString("Zorvel is not sure %1. Choose.").arg(what);
    };
    const auto add = [&](const QString& title, std::function<void(TableCorrections&)> correct) {
        question.answers.push_back({title, std::move(correct)});
    };
    const auto letters = [](std::size_t column) {
        return QString::fromStdString(columnLetters(column));
    };
    switch (doubt) {
        case TableDoubt::separator:
            ask("which character separates the cells");
            for (const SeparatorName& each : separatorNames()) {
                QString title = each.plural;
                title[0] = title[0].toUpper();
                add(title, [separator = each.separator](TableCorrections& corrections) {
                    corrections.choices.separator = separator;
                });
            }
            break;
        case TableDoubt::layout: {
            const QString columns =
                QString::fromStdString(columnsText(reading.columnsOf(ColumnRole::count)));
            ask(QString("whether %1 are censuses or species").arg(columns));
            const auto set = [](TableLayout layout) {
                return [layout](TableCorrections& corrections) {
                    corrections.choices.layout = layout;
                };
            };
            add("Censuses", set(TableLayout::speciesRows));
            add("Species", set(TableLayout::censusRows));
            add("Neither: each row is a record", set(TableLayout::records));
            break;
        }
        case TableDoubt::names: {
            ask("which columns name the census and the species");
            const auto censuses = reading.columnsOf(ColumnRole::census);
            const auto species = reading.columnsOf(ColumnRole::species);
            if (censuses.empty() || species.empty()) break;
            const auto addNames = [&](std::size_t censusColumn, std::size_t speciesColumn) {
                add(QString("Census %1, species %2")
                        .arg(letters(censusColumn), letters(speciesColumn)),
                    [=](TableCorrections& corrections) {
                        corrections.roles[censusColumn] = ColumnRole::census;
                        corrections.roles[speciesColumn] = ColumnRole::species;
                    });
            };
            addNames(censuses.front(), species.front());
            addNames(species.front(), censuses.front());
            break;
        }
        case TableDoubt::counts: {
            ask("which columns hold the counts");
            const auto counts = reading.columnsOf(ColumnRole::count);
            const auto set = [&counts](ColumnRole role) {
                return [counts, role](TableCorrections& corrections) {
                    for (const std::size_t column : counts) corrections.roles[column] = role;
                };
            };
            constexpr std::size_t mostAnswers = 4;
            for (const std::size_t column : counts) {
                if (counts.size() > mostAnswers) break;
                add("Column " + letters(column), [column](TableCorrections& corrections) {
                    corrections.roles[column] = ColumnRole::count;
                });
            }
            if (counts.size() > 1) add("Their sum", set(ColumnRole::count));
            if (counts.size() == 1) add("None: each row is one", set(ColumnRole::ignored));
            break;
        }
        case TableDoubt::stages: {
            ask(QString("whether to add the counts of columns %1, whose headers differ in nothing "
                        "but a sex or stage")
                    .arg(QString::fromStdString(columnsText(preview.stageColumns))));
            const auto set = [](SameRule rule) {
                return [rule](TableCorrections& corrections) { corrections.sameStages = rule; };
            };
            add("Add them", set(SameRule::sum));
            add("Keep them apart", set(SameRule::apart));
            break;
        }
        case TableDoubt::numbers: {
            QStringList columns;
            for (const std::size_t column : preview.unlikely) columns.append(letters(column));
            ask(QString(columns.size() == 1
                            ? "whether column %1 holds counts: its numbers look like years or areas"
                            : "whether columns %1 hold counts: their numbers look like years or "
                              "areas")
                    .arg(columns.join(", ")));
            const auto set = [&preview](ColumnRole role) {
                return [columns = preview.unlikely, role](TableCorrections& corrections) {
                    for (const std::size_t column : columns) corrections.roles[column] = role;
                };
            };
            add("They are not counts", set(ColumnRole::ignored));
            add("They are counts", set(ColumnRole::count));
            break;
        }
        case TableDoubt::amounts: {
            ask("whether the numbers are counts of individuals: the table tells of a cover or a "
                "mass");
            // Not those of another question, which this answer leaves open.
            auto counts = reading.columnsOf(ColumnRole::count);
            std::erase_if(counts, [&](auto column) {
                return std::binary_search(preview.unlikely.begin(), preview.unlikely.end(), column);
            });
            if (counts.empty()) break;
            add("They are counts", [column = counts.front()](TableCorrections& corrections) {
                corrections.roles[column] = ColumnRole::count;
            });
            break;
        }
        case TableDoubt::visits: {
            ask("whether another date makes another census");
            const auto set = [](SameRule rule) {
                return [rule](TableCorrections& corrections) { corrections.sameCensus = rule; };
            };
            add("Yes", set(SameRule::apart));
            add("No, one census for each name", set(SameRule::sum));
            break;
        }
        case TableDoubt::dateOrder: {
            ask("whether dates such as 3/4/2021 begin with the day or the month");
            const auto set = [](DateOrder order) {
                return [order](TableCorrections& corrections) { corrections.dateOrder = order; };
            };
            add("Day first", set(DateOrder::dayFirst));
            add("Month first", set(DateOrder::monthFirst));
            break;
        }
        case TableDoubt::thousandsMark: {
            // The mark in question; the other one then is the decimal mark.
            const char mark = reading.thousandsMark != 0   ? reading.thousandsMark
                              : reading.decimalMark == ',' ? ','
                                                           : '.';
            const char other = mark == ',' ? '.' : ',';
            const QString number = "1" + QString(QLatin1Char(mark)) + "234";
            ask(QString("whether %1 is a whole number").arg(number));
            add("Yes, it is 1234", [=](TableCorrections& corrections) {
                corrections.thousandsMark = mark;
                corrections.decimalMark = other;
            });
            add("No, it is 1 and a fraction", [=](TableCorrections& corrections) {
                corrections.thousandsMark = 0;
                corrections.decimalMark = mark;
            });
            break;
        }
    }
    return question;
}

}  // namespace

TableDoubts::TableDoubts(QWidget* parent) : QWidget(parent), line_(new QHBoxLayout(this)) {
    line_->setContentsMargins(0, 0, 0, 0);
}

void TableDoubts::showPreview(const TablePreview& preview) {
    qDeleteAll(findChildren<QWidget*>());
    setVisible(!preview.doubts.empty());
    if (preview.doubts.empty()) return;
    const DoubtQuestion question = questionOf(preview.doubts.front(), preview);
    auto* label = new QLabel(question.text);
    label->setForegroundRole(problemText);
    label->setWordWrap(true);
    line_->addWidget(label, 1);
    int number = 0;
    for (const DoubtAnswer& answer : question.answers) {
        auto* button = new QPushButton(QString("&%1: %2").arg(++number).arg(answer.title));
        button->setObjectName("tableDoubtAnswer");
        button->setAutoDefault(false);
        button->setAccessibleDescription(question.text);
        connect(button, &QPushButton::clicked, this, [this, button, correction = answer.correct] {
            button->setFocus();  // also after its letter, which leaves it where it was
            emit corrected(correction);
        });
        line_->addWidget(button);
        button->show();  // at once, so that it can take the focus
    }
}

void TableDoubts::takeFocus() {
    auto* first = findChild<QPushButton*>();
    if (first != nullptr) first->setFocus(Qt::OtherFocusReason);
}

}  // namespace zorvel
