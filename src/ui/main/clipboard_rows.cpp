#include "ui/main/clipboard_rows.h"

#include <QByteArray>
#include <QClipboard>
#include <QGuiApplication>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextTable>
#include <QUrl>
#include <QVariant>
#include <algorithm>
#include <iterator>
#include <string>
#include <utility>

#include "model/edits.h"
#include "model/pasted_rows.h"

namespace zorvel {

namespace {

QString worded(const PasteProblem& problem) {
    QString reason = problem.reason;
    if (problem.row == 0) return reason;
    return QString("row %1, column %2: %3").arg(problem.row).arg(problem.column).arg(reason);
}

// Why it cannot be read as text at all; empty if it can.
QString unreadable(const QString& text) {
    if (text.size() > static_cast<qsizetype>(longestCopy)) {
        return "The clipboard holds too much text; import it as a file instead.";
    }
    // Half a surrogate pair has no UTF-8.
    return text.isValidUtf16() ? QString() : "What was copied is not text.";
}

bool hasOwnRecords(const QMimeData& data) {
    return data.hasFormat(copiedCensusesType) || data.hasFormat(copiedSpeciesType);
}

// Some programs give a table only as HTML.
bool hasHtmlTable(const QMimeData& data) {
    return data.hasHtml() && data.html().contains("<td", Qt::CaseInsensitive);
}

// Pages may name files of this computer, such as style sheets.
class DocumentAlone : public QTextDocument {
  protected:
    QVariant loadResource(int /*type*/, const QUrl& /*name*/) override { return {}; }
};

// The cells of the largest table in it, between tabs; empty without one.
QString tableInHtml(const QString& html) {
    constexpr qsizetype longest = 1 << 20;  // characters, which take half a second
    if (html.size() > longest) return {};
    DocumentAlone document;
    document.setHtml(html);
    const auto cells = [](const QTextTable* table) { return table->rows() * table->columns(); };
    const QList<QTextTable*> tables = document.findChildren<QTextTable*>();
    const auto largest = std::max_element(
        tables.begin(), tables.end(),
        [&](const auto* one, const auto* other) { return cells(one) < cells(other); });
    if (largest == tables.end()) return {};
    QString text;
    for (int row = 0; row < (*largest)->rows(); ++row) {
        for (int column = 0; column < (*largest)->columns(); ++column) {
            if (column > 0) text += '\t';
            const QTextTableCell cell = (*largest)->cellAt(row, column);
            if (cell.row() != row || cell.column() != column) continue;  // merged with one before
            QTextCursor cursor = cell.firstCursorPosition();
            cursor.setPosition(cell.lastCursorPosition().position(), QTextCursor::KeepAnchor);
            text += cursor.selectedText().simplified();
        }
        text += '\n';
    }
    return text;
}

template <class Record>
PasteOutcome outcomeOf(const std::vector<Record>& records) {
    std::vector<RecordId> ids;
    ids.reserve(records.size());
    for (const Record& record : records) ids.push_back(record.id());
    return ids;
}

// The copied rows, or why they cannot be pasted.
template <class T>
using Copied = Result<std::vector<T>, QString>;

Copied<CopiedCensus> wholeRecords(const QByteArray& bytes) {
    auto records = readCopiedRecords({bytes.constData(), static_cast<std::size_t>(bytes.size())});
    if (!records) return QString("What was copied is damaged; copy it again.");
    return std::move(*records);
}

// The rows of a text, as parse reads them.
template <class T>
Copied<T> textRows(const QString& text, Pasted<T> (*parse)(std::string_view)) {
    if (const QString problem = unreadable(text); !problem.isEmpty()) return problem;
    Pasted<T> rows = parse(text.toStdString());
    if (!rows) return worded(rows.problem());
    return std::move(rows).value();
}

Copied<TaxonValues> copiedTaxa(const QMimeData& data) {
    if (data.hasFormat(copiedCensusesType)) {
        return QString("The clipboard holds censuses; paste them into the table of censuses.");
    }
    if (!data.hasFormat(copiedSpeciesType)) return textRows(data.text(), pastedTaxa);
    Copied<CopiedCensus> records = wholeRecords(data.data(copiedSpeciesType));
    if (!records) return records.problem();
    std::vector<TaxonValues> taxa;
    for (CopiedCensus& each : records.value()) {
        std::move(each.taxa.begin(), each.taxa.end(), std::back_inserter(taxa));
    }
    return taxa;
}

Copied<CopiedCensus> copiedCensuses(const QMimeData& data) {
    if (data.hasFormat(copiedSpeciesType)) {
        return QString("The clipboard holds species; paste them into the table of species.");
    }
    if (data.hasFormat(copiedCensusesType)) return wholeRecords(data.data(copiedCensusesType));
    const Copied<std::string> names = textRows(data.text(), pastedCensusNames);
    if (!names) return names.problem();
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

const QMimeData& clipboardData() {
    static const QMimeData nothing;
    const QMimeData* data = QGuiApplication::clipboard()->mimeData();
    return data != nullptr ? *data : nothing;
}

bool mayBeTable(const QMimeData& data) {
    return !hasOwnRecords(data) && (data.text().contains('\t') || hasHtmlTable(data));
}

std::optional<QString> tableText(const QMimeData& data, std::size_t columns) {
    if (hasOwnRecords(data)) return {};
    QString text = data.text();
    if (!text.contains('\t') && hasHtmlTable(data)) text = tableInHtml(data.html());
    if (!unreadable(text).isEmpty() || !text.contains('\t')) return {};
    if (pastedColumns(text.toStdString()) <= columns) return {};
    return text;
}

PasteOutcome pasteSpeciesRows(ObjectContext& context, const std::optional<Census>& census,
                              const QMimeData& data) {
    if (!census) return QString("Select the census that the species belong to first.");
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
