#include "app/import_texts.h"

#include <QCoreApplication>
#include <QLocale>
#include <QStringList>

#include "model/import.h"
#include "model/import_drivers.h"
#include "platform/file_reading.h"

namespace zorvel {

namespace {

QString tr(const char* text) {
    return QCoreApplication::translate("ImportTexts", text);
}

// A number and its noun, which is one of two.
QString counted(std::size_t count, const QString& one, const QString& many) {
    return count == 1 ? one : many.arg(QLocale().toString(qulonglong{count}));
}

QStringList leftOutSentences(const LeftOut& leftOut, bool taxa) {
    QStringList sentences;
    if (!taxa) {
        sentences.append(tr("No census has a taxon: %1.").arg(tr(whyNoTaxa(leftOut))));
    }
    if (leftOut.unfinishedLines > 0) {
        sentences.append(tr("The last line of the file is not finished and was left out."));
    }
    if (leftOut.markedRows > 0) {
        sentences.append(counted(leftOut.markedRows,
                                 tr("A row called “imported census” was left out."),
                                 tr("%1 rows called “imported census” were left out.")));
    }
    if (leftOut.shortRows > 0) {
        sentences.append(counted(
            leftOut.shortRows,
            tr("A row has fewer values than there are species: the missing ones count as 0."),
            tr("%1 rows have fewer values than there are species: the missing ones count "
               "as 0.")));
    }
    if (leftOut.negativeCells > 0) {
        sentences.append(counted(leftOut.negativeCells, tr("A negative abundance counts as 0."),
                                 tr("%1 negative abundances count as 0.")));
    }
    return sentences;
}

QString storedMessage(const QString& fileName, const ImportReport& report) {
    if (report.censuses == 0) return tr("There is no census in %1.").arg(fileName);
    const QString censuses = counted(report.censuses, tr("1 census"), tr("%1 censuses"));
    const QString taxa = counted(report.taxa, tr("1 taxon"), tr("%1 taxa"));
    QStringList sentences = leftOutSentences(report.leftOut, report.taxa > 0);
    sentences.prepend(tr("Imported %1 with %2 from %3.").arg(censuses, taxa, fileName));
    return sentences.join(' ');
}

}  // namespace

QString leftOutNote(const QString& fileName, const LeftOut& leftOut, bool taxa) {
    const QStringList sentences = leftOutSentences(leftOut, taxa);
    return sentences.isEmpty() ? QString() : fileName + ": " + sentences.join(' ');
}

bool isGoodNews(const ImportReport& report) {
    if (report.outcome == ImportReport::Outcome::cancelled) return true;
    return report.outcome == ImportReport::Outcome::stored && report.censuses > 0 &&
           leftOutSentences(report.leftOut, report.taxa > 0).isEmpty();
}

QString importMessage(const QString& fileName, const ImportReport& report) {
    switch (report.outcome) {
        case ImportReport::Outcome::stored:
            return storedMessage(fileName, report);
        case ImportReport::Outcome::refused:
            return unreadableMessage(fileName, reasonOf(report.consoleLines, report.advice),
                                     report.place);
        case ImportReport::Outcome::cancelled:
            return tr("The import of %1 was cancelled. Nothing was stored.").arg(fileName);
        case ImportReport::Outcome::noWindow:
            break;
    }
    return {};
}

}  // namespace zorvel
