// Rows of the tables on the clipboard. Beside the text for other programs it has the whole records,
// for any window or run of this program. Either all are pasted, as one step of undo, or none, and a
// sentence says why: the clipboard may contain anything. Main thread.
#pragma once

#include <QMimeData>
#include <QString>
#include <memory>
#include <optional>
#include <vector>

#include "base/result.h"
#include "model/copied_records.h"
#include "store/object_context.h"

namespace zorvel {

// MIME types of the bytes of copied_records.h.
inline constexpr char copiedCensusesType[] = "application/x-zorvel-censuses";
inline constexpr char copiedSpeciesType[] = "application/x-zorvel-species";

// Null if there is more than can be pasted.
std::unique_ptr<QMimeData> mimeDataOf(RecordCopy& copy, const char* type);

// What is on the clipboard, until it changes.
const QMimeData& clipboardData();

// Whether it seems to hold a table, by a quick look; see tableText().
bool mayBeTable(const QMimeData& data);

// The text, or the table of a page of HTML, if it has more columns than that and no records of this
// program come with it: it is a table, to be imported. Absent for a text too long to be pasted.
std::optional<QString> tableText(const QMimeData& data, std::size_t columns);

// The new records, ascending, or the reason why there are none.
using PasteOutcome = Result<std::vector<RecordId>, QString>;

// At the end of the census: whole records, or names and abundances from a text.
PasteOutcome pasteSpeciesRows(ObjectContext& context, const std::optional<Census>& census,
                              const QMimeData& data);
// At the end of the project: whole censuses, or new ones with names from a text.
PasteOutcome pasteCensusRows(ObjectContext& context, const QMimeData& data);

}  // namespace zorvel
