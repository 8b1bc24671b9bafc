#include "ui/analysis/project_wide_layout.h"

#include <QCoreApplication>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QVBoxLayout>

#include "ui/kit/look.h"
#include "ui/kit/small_widgets.h"
#include "ui/kit/value_field.h"

namespace zorvel {
namespace {

constexpr std::size_t largeRows = 2;  // at the head of each group
constexpr int rowHeight = 30;
constexpr int leastValue = 72;
constexpr int widestValue = 110;
constexpr int edge = 24;  // around all
constexpr int gap = 12;   // between cards

QString tr(const char* text) {
    return QCoreApplication::translate("zorvel::ProjectWideMetricsViewController", text);
}

class Builder {
  public:
    explicit Builder(QWidget& host) { widgets_.content = makeContent(host); }

    ProjectWideWidgets build() {
        auto* all = new QVBoxLayout(widgets_.content);
        all->setContentsMargins(edge, edge - 4, edge, edge);
        all->setSpacing(0);
        addHead(*all);
        auto* columns = new QHBoxLayout;
        columns->setSpacing(20);
        all->addLayout(columns);
        all->addStretch();
        addColumn(*columns, ProjectWideGroup::pooled);
        addColumn(*columns, ProjectWideGroup::averages);
        addNotes(addColumn(*columns, ProjectWideGroup::incidence));
        return widgets_;
    }

  private:
    static QWidget* makeContent(QWidget& host) {
        auto* scroll = new QScrollArea(&host);
        scroll->setFrameShape(QFrame::NoFrame);
        scroll->setWidgetResizable(true);
        scroll->setFocusPolicy(Qt::NoFocus);
        auto* outer = new QVBoxLayout(&host);
        outer->setContentsMargins(0, 0, 0, 0);
        outer->addWidget(scroll);
        auto* content = new QWidget;
        scroll->setWidget(content);
        scroll->viewport()->setAutoFillBackground(false);
        content->setAutoFillBackground(false);
        return content;
    }

    void addHead(QVBoxLayout& all) {
        auto* line = new QHBoxLayout;
        line->setSpacing(gap);
        all.addLayout(line);
        widgets_.heading = new ElidedLabel(widgets_.content);
        widgets_.heading->setObjectName("projectHeading");
        widgets_.heading->setFont(scaledFont(widgets_.content->font(), 1.6, true));
        line->addWidget(widgets_.heading, 1);
        widgets_.spinner = new Spinner(widgets_.content);
        widgets_.spinner->setObjectName("progressIndicator");
        line->addWidget(widgets_.spinner);
        widgets_.copyAll = new QPushButton(tr("Copy &All"), widgets_.content);
        widgets_.copyAll->setObjectName("copyAllMetrics");
        line->addWidget(widgets_.copyAll);
        widgets_.print = new QPushButton(tr("&Print\u2026"), widgets_.content);
        widgets_.print->setObjectName("printMetrics");
        line->addWidget(widgets_.print);
        widgets_.summary = plainLabel("projectSummary");
        widgets_.summary->setWordWrap(true);
        widgets_.summary->setContentsMargins(0, 4, 0, 0);
        widgets_.quiet.push_back(widgets_.summary);
        all.addWidget(widgets_.summary);
    }

    QVBoxLayout& addColumn(QHBoxLayout& columns, ProjectWideGroup group) {
        auto* column = new QVBoxLayout;
        column->setSpacing(gap);
        // Its captions are the longest.
        columns.addLayout(column, group == ProjectWideGroup::averages ? 6 : 5);
        column->addWidget(groupLabel(projectWideGroupTitle(group)));
        std::vector<const ProjectWideRow*> rows;
        for (const ProjectWideRow& row : projectWideRows()) {
            if (row.group == group) rows.push_back(&row);
        }
        // Where they are all, there is room for one below the other.
        if (rows.size() == largeRows) {
            for (const ProjectWideRow* row : rows) column->addWidget(largeCard(*row));
        } else {
            auto* large = new QHBoxLayout;
            large->setSpacing(gap);
            column->addLayout(large);
            for (std::size_t i = 0; i < largeRows; ++i) {
                Card* card = largeCard(*rows[i]);
                card->setSizePolicy(QSizePolicy::Preferred,
                                    QSizePolicy::Preferred);  // of one height
                large->addWidget(card, 1);
            }
        }
        rows.erase(rows.begin(), rows.begin() + largeRows);
        if (!rows.empty()) column->addWidget(listCard(rows));
        column->addStretch();
        return *column;
    }

    void addNotes(QVBoxLayout& column) {
        column.insertWidget(column.count() - 1, groupLabel(tr("Notes")));
        auto* card = new Card(widgets_.content);
        card->setObjectName("notesCard");
        card->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Preferred);
        auto* inside = new QVBoxLayout(card);
        inside->setContentsMargins(12, 10, 12, 10);
        widgets_.notes = new WrappedLabel(widgets_.content);
        widgets_.notes->setObjectName("projectNotes");
        widgets_.notes->setTextInteractionFlags(Qt::TextSelectableByMouse |
                                                Qt::TextSelectableByKeyboard);
        inside->addWidget(widgets_.notes);
        column.insertWidget(column.count() - 1, card);
    }

    Card* largeCard(const ProjectWideRow& row) {
        auto* card = new Card(widgets_.content);
        auto* inside = new QVBoxLayout(card);
        inside->setSpacing(2);
        inside->setContentsMargins(12, 10, 12, 10);
        const CaptionedValue made = addRow(row, *card);
        widgets_.quiet.push_back(made.caption);
        made.value->setScale(1.9);
        made.value->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
        inside->addWidget(made.caption);
        inside->addWidget(made.value);
        return card;
    }

    Card* listCard(const std::vector<const ProjectWideRow*>& rows) {
        auto* card = new Card(widgets_.content);
        auto* grid = new QGridLayout(card);
        grid->setContentsMargins(12, 6, 12, 6);
        grid->setHorizontalSpacing(8);
        grid->setVerticalSpacing(0);
        grid->setColumnStretch(0, 1);
        int line = 0;
        for (const ProjectWideRow* row : rows) {
            const CaptionedValue made = addRow(*row, *card);
            made.caption->setMinimumHeight(rowHeight);
            made.caption->setContentsMargins(0, 6, 0, 6);
            made.value->setMinimumWidth(leastValue);
            made.value->setMaximumWidth(widestValue);
            grid->addWidget(made.caption, line, 0);
            grid->addWidget(made.value, line, 1);
            ++line;
        }
        return card;
    }

    CaptionedValue addRow(const ProjectWideRow& row, QWidget& card) {
        auto* caption = new QLabel(&card);
        caption->setObjectName(row.label);
        caption->setTextFormat(Qt::PlainText);
        caption->setWordWrap(true);
        auto* value = new ValueField(&card);
        value->setObjectName(row.value);
        widgets_.rows.push_back({row.explanation, value, caption});
        return widgets_.rows.back();
    }

    QLabel* plainLabel(const char* name) {
        auto* label = new QLabel(widgets_.content);
        label->setObjectName(name);
        label->setTextFormat(Qt::PlainText);
        return label;
    }

    QLabel* groupLabel(const QString& title) {
        auto* label = new QLabel(title, widgets_.content);
        label->setFont(scaledFont(widgets_.content->font(), 1, true));
        label->setMinimumHeight(44);
        label->setWordWrap(true);
        label->setAlignment(Qt::AlignLeft | Qt::AlignBottom);
        return label;
    }

    ProjectWideWidgets widgets_;
};

}  // namespace

QString projectWideGroupTitle(ProjectWideGroup group) {
    switch (group) {
        case ProjectWideGroup::pooled:
            return tr("All censuses as one sample");
        case ProjectWideGroup::averages:
            return tr("Average of the censuses");
        case ProjectWideGroup::incidence:
            break;
    }
    return tr("Presence in censuses (sample-based)");
}

ProjectWideWidgets layOutProjectWide(QWidget& host) {
    return Builder(host).build();
}

}  // namespace zorvel
