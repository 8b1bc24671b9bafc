// Words and colours of the window for tables: the roles of columns and the questions that are in
// doubt. Main thread.
#pragma once

#include <QColor>
#include <QPalette>
#include <QString>
#include <vector>

#include "tables/reading.h"

namespace zorvel {

// Those that a column may have in the layout, in the order in which they are offered.
std::vector<ColumnRole> rolesIn(TableLayout layout);

// "Census name". A column of counts is called after what its header names.
QString roleCaption(TableLayout layout, ColumnRole role);

// Strong enough for a mark on the ground of a table; the same for roles that belong together.
QColor roleColor(ColumnRole role, const QPalette& palette);
// The ground of the cells of a column.
QColor roleTint(ColumnRole role, const QPalette& palette);

// Of the command that takes all cells with the fault as 0, with its letter.
QString zeroCaption(CountFault fault);

}  // namespace zorvel
