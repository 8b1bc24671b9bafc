// The kinds of files that come by a drop, the command line or the file manager: detected from their
// beginning, and asked for if in doubt. Main thread; the files are opened in the background, once:
// what was looked at is what is read.
#pragma once

#include <QString>
#include <QStringList>
#include <functional>
#include <memory>
#include <vector>

#include "interchange/file_kind.h"
#include "platform/file_reading.h"

namespace zorvel {

class MainWindowController;
class ProjectWindows;

struct KnownFile {
    std::shared_ptr<NamedFile> file;
    bool isText = false;   // or a workbook; otherwise a project, or neither
    bool isTable = false;  // to be looked at as a table, whatever its kind
    FileKind kind = FileKind::matrix;
    // Whether the kind of a text is certain; if not, its first lines, to ask about.
    bool certain = true;
    QString firstLines;
};

// As the beginning of the file shows it. Waits for the disk.
KnownFile lookAt(const QString& path);

// All files in their order, without those that the user decides against. Files that look like one
// kind are asked about together. window: parent of the questions, may be null. receive is called
// once, later.
void findKinds(ProjectWindows& windows, MainWindowController* window, const QStringList& paths,
               std::function<void(const std::vector<KnownFile>& files)> receive);

}  // namespace zorvel
