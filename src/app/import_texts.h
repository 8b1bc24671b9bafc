// What a window says of an import that has ended.
#pragma once

#include <QString>

namespace zorvel {

struct ImportReport;
struct LeftOut;

// A sentence or more, of the file of that name: what was stored and what was left out, or why
// nothing was stored.
QString importMessage(const QString& fileName, const ImportReport& report);

// Whether the user has nothing to see to: all was stored, or the import given up.
bool isGoodNews(const ImportReport& report);

// What a format leaves out by its rules and the user would miss, in sentences; empty where nothing.
// Absent taxa are not missed, unless all are. taxa: whether any census has one.
QString leftOutNote(const QString& fileName, const LeftOut& leftOut, bool taxa);

}  // namespace zorvel
