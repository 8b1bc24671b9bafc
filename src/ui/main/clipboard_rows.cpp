#include "ui/main/clipboard_rows.h"

#include <QByteArray>
#include <QClipboard>
#include <QGuiApplication>
#include <algorithm>
#include <iterator>
#include <string>
#include <utility>

#include "model/edits.h"
#include "model/pasted_rows.h"

namespace zorvel {

namespace {

QString worded(const QString& reason) {
    return QString("Nothing was pasted: %1").arg(reason);
}

QString worded(const PasteProblem& problem) {
    const QString reason = problem.reason;
    if (problem.row == 0) return worded(reason);
    return QString("Nothing was pasted: row %1, column %2: %3")
        .arg(problem.row)
        .arg(problem.column)
        .arg(reason);
}

// Why it cannot be read as text at all; empty if it can.
QString unreadable(const QString& text) {
    if (text.size() > static_cast<qsizetype>(longestCopy)) {
        return worded("The clipboard holds too much text; import it as a file instead.");
    }
    // Half a surrogate pair has no UTF-8.
    if (!text.isValidUtf16()) return worded("What was copied is not text.");
    return {};
}

template <class Record>
PasteOutcome outcomeOf(const std::vector<Record>& records) {
    std::vector<RecordId> ids;
    ids.reserve(records.size());
    for (const Record& record : records) ids.push_back(record.id());
    return ids;
}

// The copied rows, or the sentence that says why they cannot be pasted.
template <class T>
using Copied = Result<std::vector<T>, QString>;

Copied<CopiedCensus> wholeRecords(const QMimeData& data, const char* type) {
    const QByteArray bytes = data.data(type);
    auto records = readCopiedRecords({bytes.constData(), static_cast<std::size_t>(bytes.size())});
    if (!records) return worded("What was copied is damaged; copy it again.");
    return std::move(*records);
}

Copied<TaxonValues> copiedTaxa(const QMimeData& data) {
    if (data.hasFormat(copiedCensusesType)) {
        return worded("The clipboard holds censuses; paste them into the table of censuses.");
    }
    std::vector<TaxonValues> taxa;
    if (data.hasFormat(copiedSpeciesType)) {
        Copied<CopiedCensus> records = wholeRecords(data, copiedSpeciesType);
        if (!records) return records.problem();
        for (CopiedCensus& each : records.value()) {
            std::move(each.taxa.begin(), each.taxa.end(), std::back_inserter(taxa));
        }
        return taxa;
    }
    const QString text = data.text();
    if (const QString problem = unreadable(text); !problem.isEmpty()) return problem;
    Pasted<TaxonValues> pasted = pastedTaxa(text.toStdString());
    if (!pasted) return worded(pasted.problem());
    return std::move(pasted).value();
}

Copied<CopiedCensus> copiedCensuses(const QMimeData& data) {
    if (data.hasFormat(copiedSpeciesType)) {
        return worded("The clipboard holds species; paste them into the table of species.");
    }
    if (data.hasFormat(copiedCensusesType)) return wholeRecords(data, copiedCensusesType);
    const QString text = data.text();
    if (const QString problem = unreadable(text); !problem.isEmpty()) return problem;
    const Pasted<std::string> names = pastedCensusNames(text.toStdString());
    if (!names) return worded(names.problem());
    std::vector<CopiedCensus> censuses(names.value().size());
    for (std::size_t i = 0; i < censuses.size(); ++i) {
        censuses[i].attributes.name = SharedText(names.value()[i]);
    }
    return censuses;
}

}  // namespace

std::unique_ptr<QMimeData> mimeDataOf(RecordCopy& copy, const char* type) {
    const std::optional<std::string> bytes = copy.take();
    if (!bytes) return nullptr;
    auto data = std::make_unique<QMimeData>();
    data->setData(type, QByteArray::fromStdString(*bytes));
    return data;
}

bool clipboardHoldsCensuses() {
    const QMimeData* data = QGuiApplication::clipboard()->mimeData();
    return data != nullptr && data->hasFormat(copiedCensusesType);
}

bool clipboardHoldsTable() {
    const QMimeData* data = QGuiApplication::clipboard()->mimeData();
    return data != nullptr && tableText(*data, 1);
}

std::optional<QString> tableText(const QMimeData& data, std::size_t columns) {
    if (data.hasFormat(copiedCensusesType) || data.hasFormat(copiedSpeciesType)) return {};
    QString text = data.text();
    if (!unreadable(text).isEmpty() || !text.contains('\t')) return {};
    if (pastedColumns(text.toStdString()) <= columns) return {};
    return text;
}

PasteOutcome pasteSpeciesRows(ObjectContext& context, const std::optional<Census>& census,
                              const QMimeData& data) {
    if (!census) return worded("Select the census that the species belong to first.");
    Copied<TaxonValues> taxa = copiedTaxa(data);
    if (!taxa) return taxa.problem();
    return outcomeOf(pasteTaxa(context, *census, std::move(taxa).value()));
}

PasteOutcome pasteCensusRows(ObjectContext& context, const QMimeData& data) {
    Copied<CopiedCensus> censuses = copiedCensuses(data);
    if (!censuses) return censuses.problem();
    return outcomeOf(pasteCensuses(context, std::move(censuses).value()));
}

}  // namespace zorvel
