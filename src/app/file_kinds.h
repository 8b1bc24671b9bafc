// What kinds of files they are that come to the program by a drop, the command line or the file
// manager: told by their first bytes, and asked for where these leave a doubt. Main thread; the
// bytes are read in the background.
#pragma once

#include <QString>
#include <QStringList>
#include <functional>
#include <optional>
#include <vector>

#include "interchange/file_kind.h"

namespace zorvel {

class MainWindowController;
class ProjectWindows;

struct KnownFile {
    QString path;
    bool isText = false;  // otherwise a project, or what will turn out to be neither
    FileKind kind = FileKind::matrix;
};

// A file as its first bytes show it. Waits for the disk.
struct FileSample {
    QString path;
    bool isText = false;
    FileKind guess = FileKind::matrix;
    bool certain = false;
    QString firstLines;
};
FileSample sampleFile(const QString& path);

// All files in their order, without those that the person does not want after all. Files of one
// kind by their look are asked about together. window: to stand over, may be null. receive is
// called once, later.
void findKinds(ProjectWindows& windows, MainWindowController* window, const QStringList& paths,
               std::function<void(const std::vector<KnownFile>& files)> receive);

}  // namespace zorvel
