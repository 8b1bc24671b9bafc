// The kinds of the files that come to the program by a drop, the command line or the file manager:
// told by their beginning, and asked for where that leaves a doubt. Main thread; the files are
// opened in the background, once: what was looked at is what is read.
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
    bool isText = false;  // otherwise a project, or what will turn out to be neither
    FileKind kind = FileKind::matrix;
    // Of a text: whether its kind is beyond doubt; if it is not, its first lines, to ask about.
    bool certain = true;
    QString firstLines;
};

// As the beginning of the file shows it. Waits for the disk.
KnownFile lookAt(const QString& path);

// All files in their order, without those that the user does not want after all. Files of one kind
// by their look are asked about together. window: to stand over, may be null. receive is called
// once, later.
void findKinds(ProjectWindows& windows, MainWindowController* window, const QStringList& paths,
               std::function<void(const std::vector<KnownFile>& files)> receive);

}  // namespace zorvel
