#include "app/file_kinds.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QPointer>
#include <QRegularExpression>
#include <algorithm>
#include <array>
#include <string>
#include <utility>

#include "app/project_windows.h"
#include "base/files.h"
#include "interchange/separator_guess.h"
#include "interchange/text_file.h"
#include "platform/file_names.h"
#include "platform/job_queue.h"
#include "ui/kit/alerts.h"
#include "ui/kit/shown_text.h"
#include "ui/main/main_window_controller.h"

namespace zorvel {

namespace {

constexpr std::size_t sampleStep = 65536;               // bytes
constexpr std::size_t largestSample = 64 * sampleStep;  // bytes
constexpr int excerptLines = 5;
constexpr qsizetype longestLine = 200;  // characters

QString tr(const char* text) {
    return QCoreApplication::translate("FileKinds", text);
}

// A header and a line or two tell the kind, and a header may be long.
bool isEnough(const std::string& bytes) {
    constexpr int lineEnds = 3;
    return bytes.size() >= largestSample || std::count_if(bytes.begin(), bytes.end(), [](char c) {
                                                return c == '\n' || c == '\r';
                                            }) >= lineEnds;
}

// The file goes on: without its last line, which may be cut within a character; of a single line
// without a character that is cut.
void dropCutLine(std::string& bytes) {
    const std::size_t end = bytes.find_last_of("\r\n");
    if (end != std::string::npos) return bytes.resize(end + 1);
    while (!bytes.empty() && (static_cast<unsigned char>(bytes.back()) & 0xC0U) == 0x80U) {
        bytes.pop_back();
    }
    if (!bytes.empty() && static_cast<unsigned char>(bytes.back()) >= 0xC0U) bytes.pop_back();
}

std::string firstBytes(const QString& path) {
    const Result<OpenFile> file = openRegularFile(encodedPath(path));
    if (!file) return {};
    std::string bytes;
    for (bool more = true; more;) {
        const Result<std::string> step =
            readBytes(file.value().descriptor(), sampleStep, bytes.size());
        if (step) bytes += step.value();
        more = step && step.value().size() == sampleStep && !isEnough(bytes);
    }
    if (bytes.size() % sampleStep == 0) dropCutLine(bytes);
    return bytes;
}

QString excerptOf(const QString& text) {
    static const QRegularExpression lineBreak("\r\n|[\r\n]");
    QStringList lines = text.split(lineBreak);
    const bool more = lines.size() > excerptLines;
    while (lines.size() > excerptLines) lines.removeLast();
    for (QString& line : lines) line = shortened(line, longestLine);
    return lines.join('\n').trimmed() + (more ? QString("\n…") : QString());
}

using Samples = std::vector<FileSample>;

struct Kind {
    FileKind kind;
    QString title;
    QString meaning;
};

const std::array<Kind, 4>& kinds() {
    static const std::array<Kind, 4> all = {
        Kind{FileKind::list, tr("&Abundance list"), tr("numbers alone: one census without names")},
        Kind{FileKind::census, tr("&Single census"), tr("a species and its number on each line")},
        Kind{FileKind::matrix, tr("Census &matrix"),
             tr("species in the first line, then a census on each line")},
        Kind{FileKind::ios, tr("&Phone-app file"), tr("an export of the phone app")},
    };
    return all;
}

Choice choiceOf(const Samples& alike) {
    Choice choice;
    choice.title = tr("Import");
    const QString name = shortened(QFileInfo(alike.front().path).fileName(), 80);
    const auto count = static_cast<int>(alike.size());
    choice.text = count == 1 ? tr("What does “%1” hold?").arg(name)
                             : tr("What do these %L1 files hold?").arg(count);
    choice.excerpt = alike.front().firstLines;
    if (count > 1) {
        choice.informativeText = tr("All %L1 files look alike; these are the first lines of “%2”.")
                                     .arg(QString::number(count), name);
    }
    for (const Kind& kind : kinds()) {
        if (kind.kind == alike.front().guess) {
            choice.preselected = static_cast<int>(choice.options.size());
        }
        choice.options.append(kind.title + '\t' + kind.meaning);
    }
    choice.accept = count == 1 ? tr("Import") : tr("Import All %L1 Files").arg(count);
    return choice;
}

// What the person says of each doubtful kind; absent where she cancelled.
std::optional<FileKind> askFor(FileKind guess, const Samples& samples, Alerts& alerts,
                               QWidget* window) {
    Samples alike;
    std::copy_if(samples.begin(), samples.end(), std::back_inserter(alike),
                 [&](const FileSample& sample) {
                     return sample.isText && !sample.certain && sample.guess == guess;
                 });
    if (alike.empty()) return guess;
    const int chosen = alerts.choose(window, choiceOf(alike));
    if (chosen < 0) return std::nullopt;
    return kinds().at(static_cast<std::size_t>(chosen)).kind;
}

std::vector<KnownFile> decide(const Samples& samples, Alerts& alerts,
                              const QPointer<MainWindowController>& window) {
    std::array<std::optional<FileKind>, 4> answers;
    for (std::size_t i = 0; i < answers.size(); ++i) {
        answers.at(i) = askFor(kinds().at(i).kind, samples, alerts, window);
    }
    std::vector<KnownFile> files;
    for (const FileSample& sample : samples) {
        if (!sample.isText) {
            files.push_back({sample.path});
            continue;
        }
        const auto place =
            std::find_if(kinds().begin(), kinds().end(),
                         [&](const Kind& kind) { return kind.kind == sample.guess; }) -
            kinds().begin();
        const std::optional<FileKind> kind =
            sample.certain ? sample.guess : answers.at(static_cast<std::size_t>(place));
        if (kind) files.push_back({sample.path, true, *kind});
    }
    return files;
}

}  // namespace

FileSample sampleFile(const QString& path) {
    FileSample sample;
    sample.path = path;
    const std::string bytes = firstBytes(path);
    if (bytes.empty() || path.endsWith(projectEnding) || startsLikeProject(bytes)) return sample;
    const Result<std::string> text = decodeText(bytes);
    if (!text.ok() || text.value().empty()) return sample;
    sample.isText = true;
    sample.guess = guessFileKind(text.value());
    // What other separators make of it is told when it is read: to ask for its kind leads nowhere.
    sample.certain =
        isCertain(sample.guess, text.value()) || !foreignSeparator(text.value()).empty();
    sample.firstLines = excerptOf(QString::fromStdString(text.value()));
    return sample;
}

void findKinds(ProjectWindows& windows, MainWindowController* window, const QStringList& paths,
               std::function<void(const std::vector<KnownFile>& files)> receive) {
    windows.jobs().start(
        &windows,
        [paths] {
            Samples samples;
            for (const QString& path : paths) samples.push_back(sampleFile(path));
            return samples;
        },
        [&windows, guard = QPointer<MainWindowController>(window), receive = std::move(receive)](
            const Samples& samples) { receive(decide(samples, windows.panels().alerts, guard)); });
}

}  // namespace zorvel
