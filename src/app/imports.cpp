#include "app/imports.h"

#include <QPointer>
#include <optional>
#include <utility>

#include "app/open_text_file.h"
#include "app/project_windows.h"
#include "base/console.h"
#include "model/import.h"
#include "ui/main/main_view_controller.h"
#include "ui/main/main_window_controller.h"

namespace zorvel {

Document* currentOrNewDocument(ProjectWindows& windows, MainWindowController* window) {
    return window != nullptr ? &window->document() : &windows.openUntitled().document();
}

void runImport(ProjectWindows& windows, MainWindowController* window, FileKind kind) {
    const bool hadWindow = window != nullptr;
    openTextFile(windows, window,
                 [=, &windows,
                  guard = QPointer<MainWindowController>(window)](std::optional<OpenedText> text) {
                     if (!text) {
                         writeConsoleLine("WARNING: no string obtained from file");
                         return;
                     }
                     if (hadWindow && !guard) return;
                     Document* document = currentOrNewDocument(windows, guard);
                     const auto parsed = parseFile(kind, text->text);
                     if (parsed.value) storeCensuses(document->project(), *parsed.value);
                 });
}

}  // namespace zorvel
