#include "ui/main/pasting.h"

#include <QCoreApplication>

#include "model/edits.h"
#include "model/pasted_rows.h"
#include "store/undo_step.h"

namespace zorvel {

namespace {

// Far above any table, and far below what would stop the window for long.
constexpr qsizetype longestText = qsizetype{64} * 1024 * 1024;

QString tr(const char* text) {
    return QCoreApplication::translate("Pasting", text);
}

QString worded(const QString& reason) {
    return tr("Nothing was pasted: %1").arg(reason);
}

QString worded(const PasteProblem& problem) {
    const QString reason = QCoreApplication::translate("TypedValues", problem.reason);
    if (problem.row == 0) return worded(reason);
    return tr("Nothing was pasted: row %1, column %2: %3")
        .arg(problem.row)
        .arg(problem.column)
        .arg(reason);
}

// What cannot be read as text at all; empty where it can.
QString unreadable(const QString& text) {
    if (text.size() > longestText) {
        return worded(tr("The clipboard holds too much text; import it as a file instead."));
    }
    // Half a pair of UTF-16 has no UTF-8.
    if (!text.isValidUtf16()) return worded(tr("What was copied is not text."));
    return {};
}

template <class Record>
PasteOutcome outcomeOf(const std::vector<Record>& records) {
    PasteOutcome outcome;
    outcome.records.reserve(records.size());
    for (const Record& record : records) outcome.records.push_back(record.id());
    return outcome;
}

}  // namespace

PasteOutcome pasteSpeciesRows(ObjectContext& context, const std::optional<Census>& census,
                              const QString& text) {
    if (!census) return {{}, worded(tr("Select the census that the species belong to first."))};
    if (const QString problem = unreadable(text); !problem.isEmpty()) return {{}, problem};
    Pasted<TaxonValues> taxa = pastedTaxa(text.toStdString());
    if (!taxa) return {{}, worded(taxa.problem())};
    return outcomeOf(pasteTaxa(context, *census, std::move(taxa).value()));
}

PasteOutcome pasteCensusRows(ObjectContext& context, const QString& text) {
    if (const QString problem = unreadable(text); !problem.isEmpty()) return {{}, problem};
    const Pasted<std::string> names = pastedCensusNames(text.toStdString());
    if (!names) return {{}, worded(names.problem())};
    const UndoStep step(context, "Paste");
    std::vector<Census> censuses;
    for (const std::string& name : names.value()) {
        CensusAttributes attributes;
        attributes.name = SharedText(name);
        censuses.push_back(context.insertCensus(attributes, {}));
    }
    return outcomeOf(censuses);
}

}  // namespace zorvel
