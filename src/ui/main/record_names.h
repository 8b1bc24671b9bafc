// The names of censuses and species as the tables show them, and which names stand in a list more
// than once: marked, with a sentence that says what the analyses then do. Main thread, except for
// SharedNames and the notes.
#pragma once

#include <QString>
#include <QVariant>
#include <cstddef>
#include <optional>
#include <unordered_map>
#include <vector>

#include "base/shared_text.h"
#include "base/text.h"

namespace zorvel {

struct SparseCountsResult;

// As it is shown: "unnamed" for no name, and a very long name shortened.
QString shownName(const std::optional<SharedText>& name);

// The whole name for an editor; empty for no name.
QString editableName(const std::optional<SharedText>& name);
// False for a name too long for a line editor.
bool isNameEditable(const std::optional<SharedText>& name);

// The data of a name's cell for a role. sharedReason: what is said of a shared name, null for any
// other; isMarked: a shared name has a mark beside it.
QVariant nameData(const std::optional<SharedText>& name, int role, const char* sharedReason,
                  bool isMarked);

inline constexpr char sharedSpeciesReason[] =
    "Another species of this census has the same name: the census matrix, and the averages, "
    "Chao2 and sample-based rarefaction made from it, use only the last of them; the pooled "
    "values of the project add them up.";
inline constexpr char sharedCensusReason[] =
    "Another census has the same name: in the census matrix, and in the averages, Chao2 and "
    "sample-based rarefaction made from it, they are merged into the row of the first, and the "
    "rows of the others stay empty.";

// The names that several records of a list have. Names that are canonically equivalent count as
// one; records without a name share none.
class SharedNames {
  public:
    // Of a record of the list.
    void add(const std::optional<SharedText>& name);

    [[nodiscard]] bool isShared(const std::optional<SharedText>& name) const;
    // The records with shared names.
    [[nodiscard]] std::size_t recordCount() const { return records_; }
    // One of each.
    [[nodiscard]] const std::vector<SharedText>& names() const { return shared_; }

  private:
    std::unordered_map<SharedText, std::size_t, CanonicalHash, CanonicalEqual> counts_;
    std::vector<SharedText> shared_;
    std::size_t records_ = 0;
};

// The line above the species table; empty if no name is shared.
QString sharedSpeciesLine(const SharedNames& names);

// What the census matrix does with equal and missing names of a project, in sentences; empty if
// there are none. Any thread.
QString matrixNote(const SparseCountsResult& counts);
// The same, and what it means to the analyses.
QString mergedNamesNote(const SparseCountsResult& counts);

}  // namespace zorvel
