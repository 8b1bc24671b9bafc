#include "app/species_list_command.h"

#include <QFileInfo>
#include <QPointer>
#include <iterator>
#include <utility>
#include <vector>

#include "app/open_text_file.h"
#include "app/project_windows.h"
#include "base/console.h"
#include "interchange/parsers.h"
#include "platform/job_queue.h"
#include "ui/main/main_view_controller.h"
#include "ui/main/main_window_controller.h"

namespace zorvel {

namespace {

// A set in the background, so that the main thread has little left to do.
TaxonFormatter::Names namesIn(std::string_view text) {
    auto names = parseSpeciesList(text).value.value_or(std::vector<std::string>());
    return {std::make_move_iterator(names.begin()), std::make_move_iterator(names.end())};
}

QString addedNames(std::size_t added) {
    return added == 1 ? "Added one name" : QString("Added %L1 names").arg(qulonglong{added});
}

QString message(const QString& file, std::size_t added, std::size_t known) {
    if (added + known == 0) return QString("There are no names in %1.").arg(file);
    if (added == 0) {
        return known == 1 ? QString("The one name in %1 was known already.").arg(file)
                          : QString("All %L1 names in %2 were known already.")
                                .arg(qulonglong{known})
                                .arg(file);
    }
    const QString what =
        QString("%1 from %2, to complete species names until this window is closed")
            .arg(addedNames(added), file);
    if (known == 0) return what + '.';
    return known == 1 ? QString("%1; one was known already.").arg(what)
                      : QString("%1; %L2 were known already.").arg(what).arg(qulonglong{known});
}

void addNames(MainViewController& view, const TaxonFormatter::Names& names, const QString& file) {
    TaxonFormatter& formatter = view.taxonFormatter();
    const std::size_t before = formatter.taxonNames().size();
    formatter.addTaxonNames(names);
    const std::size_t added = formatter.taxonNames().size() - before;
    view.messageStrip().addMessage(message(file, added, names.size() - added),
                                   MessageStrip::Tone::news);
}

}  // namespace

void importSpeciesList(ProjectWindows& windows, MainWindowController* window) {
    if (window == nullptr) return;
    const QPointer<MainWindowController> shown(window);
    JobQueue& jobs = windows.jobs();
    const auto received = [shown, &jobs](std::optional<OpenedText> opened) {
        if (!opened) return writeConsoleLines(parseSpeciesList(std::nullopt).consoleLines);
        if (!shown) return;
        jobs.start(
            shown, [text = std::move(opened->text)] { return namesIn(text); },
            [shown, file = QFileInfo(opened->path).fileName()](const TaxonFormatter::Names& names) {
                addNames(shown->mainView(), names, file);
            });
    };
    // Whoever cancels has no list, and is told nothing: the console's line that there are no names
    // is about a file that holds none, or could not be read.
    openTextFile(windows, window, "Import Species List", received, [] {});
}

}  // namespace zorvel
