// The look of the project-wide metrics: a head, and a column a group, its first two values large.
// The widgets belong to the host; their names are those of projectWideRows(). Main thread.
#pragma once

#include <QString>
#include <vector>

#include "ui/analysis/project_wide_rows.h"
#include "ui/kit/metric_rows.h"

class QLabel;
class QPushButton;
class QWidget;

namespace zorvel {

class Spinner;

struct ProjectWideWidgets {
    QWidget* content = nullptr;  // that holds the rows, and scrolls where the window is small
    QLabel* heading = nullptr;
    QLabel* summary = nullptr;
    Spinner* spinner = nullptr;
    QPushButton* copyAll = nullptr;
    QPushButton* print = nullptr;
    QLabel* notes = nullptr;
    std::vector<QLabel*> quiet;  // that say less than what stands beside them
    MetricRows::Rows rows;
};
QString projectWideGroupTitle(ProjectWideGroup group);
ProjectWideWidgets layOutProjectWide(QWidget& host);

}  // namespace zorvel
