// The folder in which a panel for files begins. Main thread.
#pragma once

#include <QString>

class QWidget;

namespace zorvel {

// That of the project to which the widget's window belongs, see QWidget::windowFilePath(); for a
// project without a file the one used last, in this run or an earlier one; empty before the first.
QString panelFolder(const QWidget* widget);

// path: of the file that was chosen.
void rememberPanelFolder(const QString& path);

}  // namespace zorvel
