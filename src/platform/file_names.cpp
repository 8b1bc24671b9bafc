#include "platform/file_names.h"

#include <QFileInfo>
#include <QTextBoundaryFinder>

namespace zorvel {

QString displayNameOf(const QString& path) {
    const QFileInfo file(path);
    const QString name = file.completeBaseName();
    return name.isEmpty() ? file.fileName() : name;
}

QString asFileName(const QString& displayName) {
    constexpr qsizetype mostBytes = 120;
    QString name = displayName;
    for (QChar& character : name) {
        if (character == u'/' || character.category() == QChar::Other_Control) character = u' ';
    }
    while (name.toUtf8().size() > mostBytes) {
        QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, name);
        finder.toEnd();
        name.truncate(finder.toPreviousBoundary());
    }
    name = name.trimmed();
    return name.isEmpty() ? QStringLiteral("project") : name;
}

}  // namespace zorvel
