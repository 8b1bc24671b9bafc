#include "app/file_kinds.h"

#include <QFileInfo>
#include <QPointer>
#include <QRegularExpression>
#include <algorithm>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "app/project_windows.h"
#include "platform/job_queue.h"
#include "tables/guess.h"
#include "ui/kit/panels.h"
#include "ui/kit/shown_text.h"
#include "ui/main/main_window_controller.h"
#include "workbook/workbook.h"

namespace zorvel {

namespace {

using Files = std::vector<KnownFile>;

// Reads the first lines: a header and a line or two tell the kind, and a header may be long.
void readFirstLines(InputFile& input) {
    constexpr std::size_t step = 65536;         // bytes
    constexpr std::size_t largest = 64 * step;  // bytes
    constexpr std::ptrdiff_t enough = 3;        // line ends
    std::ptrdiff_t lineEnds = 0;
    for (std::size_t counted = 0;; counted = input.start().size()) {
        const std::string& start = input.start();
        lineEnds += std::count_if(start.begin() + static_cast<std::ptrdiff_t>(counted), start.end(),
                                  [](char c) { return c == '\n' || c == '\r'; });
        if (input.atEnd() || lineEnds >= enough || start.size() >= largest) return;
        input.readStart(start.size() + step);
    }
}

// The file is longer than these bytes. Drops the last line, which may be cut within a character; of
// a single line only a character that is cut.
void dropCutLine(std::string& bytes) {
    const std::size_t end = bytes.find_last_of("\r\n");
    if (end != std::string::npos) return bytes.resize(end + 1);
    while (!bytes.empty() && (static_cast<unsigned char>(bytes.back()) & 0xC0U) == 0x80U) {
        bytes.pop_back();
    }
    if (!bytes.empty() && static_cast<unsigned char>(bytes.back()) >= 0xC0U) bytes.pop_back();
}

QString excerptOf(const QString& text) {
    constexpr int excerptLines = 5;
    constexpr qsizetype longestLine = 200;  // characters
    static const QRegularExpression lineBreak("\r\n|[\r\n]");
    QStringList lines = text.split(lineBreak);
    const bool more = lines.size() > excerptLines;
    while (lines.size() > excerptLines) lines.removeLast();
    for (QString& line : lines) line = shortened(line, longestLine);
    return lines.join('\n').trimmed() + (more ? QString("\n…") : QString());
}

struct Kind {
    std::optional<FileKind> kind;  // absent: a table
    const char* title;
    const char* meaning;
};

constexpr Kind kinds[] = {
    {FileKind::list, "&Abundance list", "numbers alone: one census without names"},
    {FileKind::census, "&Single census", "a species and its number on each line"},
    {FileKind::matrix, "Census &matrix", "species in the first line, then a census on each line"},
    {FileKind::ios, "&Phone-app file", "an export of the phone app"},
    {std::nullopt, "&Table", "any other layout: look at it first"},
};

// What it seems to be.
bool isOf(const KnownFile& file, const Kind& kind) {
    return file.isTable ? !kind.kind : kind.kind == file.kind;
}

Choice choiceOf(const Files& alike) {
    const KnownFile& first = alike.front();
    Choice choice;
    choice.title = "Import";
    const QString name = shortened(QFileInfo(first.file->path).fileName(), 80);
    const auto count = static_cast<int>(alike.size());
    choice.text = count == 1 ? QString("What does “%1” hold?").arg(name)
                             : QString("What do these %L1 files hold?").arg(count);
    choice.excerpt = first.firstLines;
    if (count > 1) {
        choice.informativeText =
            QString("All %L1 files look alike; these are the first lines of “%2”.")
                .arg(QString::number(count), name);
    }
    for (const Kind& kind : kinds) {
        if (isOf(first, kind)) choice.preselected = static_cast<int>(choice.options.size());
        choice.options.append(QString("%1\t%2").arg(kind.title, kind.meaning));
    }
    choice.accept = count == 1 ? QString("Import") : QString("Import All %L1 Files").arg(count);
    return choice;
}

// Asks once for each kind that is in doubt.
Files decide(Files files, Alerts& alerts, const QPointer<MainWindowController>& window) {
    for (const Kind& guess : kinds) {
        const auto isAskedAbout = [&guess](const KnownFile& file) {
            return !file.certain && isOf(file, guess);
        };
        Files alike;
        std::copy_if(files.begin(), files.end(), std::back_inserter(alike), isAskedAbout);
        if (alike.empty()) continue;
        const int chosen = alerts.choose(window, choiceOf(alike));
        if (chosen < 0) std::erase_if(files, isAskedAbout);
        for (KnownFile& file : files) {
            if (!isAskedAbout(file)) continue;
            file.certain = true;
            file.isTable = !kinds[chosen].kind;
            file.kind = kinds[chosen].kind.value_or(file.kind);
        }
    }
    return files;
}

// Whether a table of that text is more than the census matrix that it seems to be.
bool isMoreThanMatrix(const std::string& text, bool whole) {
    constexpr std::size_t enough = 1U << 18U;  // bytes
    const std::string_view start = std::string_view(text).substr(0, enough);
    const TableGuess guess = guessTable(start, whole && start.size() == text.size());
    const TableReading& reading = guess.reading;
    // Two columns may be read either way round.
    const bool isComma = reading.form.separator == ',';
    if (reading.columns.size() < (isComma ? 3 : 2)) return false;
    const bool isPlain = isComma && reading.layout == TableLayout::censusRows &&
                         reading.firstRow == 1 && reading.headerRows.size() == 1 &&
                         std::all_of(reading.columns.begin() + 1, reading.columns.end(),
                                     [](ColumnRole role) { return role == ColumnRole::count; });
    return !isPlain;
}

bool isUtf16(const std::string& bytes, bool whole) {
    const TableEncoding encoding = guessEncoding(bytes, whole);
    return encoding == TableEncoding::utf16LittleEndian ||
           encoding == TableEncoding::utf16BigEndian;
}

}  // namespace

KnownFile lookAt(const QString& path) {
    KnownFile known;
    known.file = std::make_shared<NamedFile>(path);
    if (!known.file->input || !*known.file->input) return known;
    InputFile& input = known.file->input->value();
    readFirstLines(input);
    std::string start = input.start();
    const bool whole = input.atEnd();
    if (looksLikeWorkbook(start) || isUtf16(start, whole)) {
        known.isText = known.isTable = true;
        return known;
    }
    if (!whole) dropCutLine(start);
    const Result<std::string> text = decodeText(std::move(start));
    if (!text.ok() || text.value().empty()) return known;
    known.isText = true;
    known.kind = guessFileKind(text.value());
    known.certain = isCertain(known.kind, text.value()) && foreignSeparator(text.value()).empty();
    known.isTable =
        !known.certain && known.kind == FileKind::matrix && isMoreThanMatrix(text.value(), whole);
    if (!known.certain) known.firstLines = excerptOf(QString::fromStdString(text.value()));
    return known;
}

void findKinds(ProjectWindows& windows, MainWindowController* window, const QStringList& paths,
               std::function<void(const std::vector<KnownFile>& files)> receive) {
    windows.jobs().start(
        &windows,
        [paths] {
            Files files;
            constexpr std::size_t mostOpen = 64;
            for (const QString& path : paths) {
                files.push_back(lookAt(path));
                if (files.size() > mostOpen) files.back().file->input.reset();
            }
            return files;
        },
        [&windows, guard = QPointer<MainWindowController>(window), receive = std::move(receive)](
            const Files& files) { receive(decide(files, windows.panels().alerts, guard)); });
}

}  // namespace zorvel
