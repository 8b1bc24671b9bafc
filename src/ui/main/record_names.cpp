#include "ui/main/record_names.h"

#include <QFont>
#include <QStringList>

#include "model/diversity_document.h"
#include "ui/kit/glyphs.h"
#include "ui/kit/look.h"
#include "ui/kit/shown_text.h"
#include "ui/main/ordered_table_model.h"

namespace zorvel {

namespace {

constexpr qsizetype longestName = 1000;          // characters
constexpr qsizetype longestNameInSentence = 40;  // characters
constexpr std::size_t longestEditable = 30'000;  // bytes; a line editor cuts longer texts

}  // namespace

QString shownName(const std::optional<SharedText>& name) {
    if (!name) return unnamedName;
    // Enough bytes for that many characters and one more.
    const std::string_view start = name->view().substr(0, 4 * (longestName + 1));
    return shortened(oneLine(QString::fromUtf8(start)), longestName);
}

QString editableName(const std::optional<SharedText>& name) {
    return name ? QString::fromStdString(name->str()) : QString();
}

bool isNameEditable(const std::optional<SharedText>& name) {
    return !name || name->view().size() <= longestEditable;
}

QVariant nameData(const std::optional<SharedText>& name, int role, const char* sharedReason,
                  bool isMarked) {
    switch (role) {
        case Qt::DisplayRole:
            return shownName(name);
        case Qt::EditRole:
            return editableName(name);
        case OrderedTableModel::dimmedRole:
            return !name;
        case Qt::FontRole: {
            if (name) return {};
            QFont font;
            font.setItalic(true);
            return font;
        }
        case Qt::ToolTipRole:
            return sharedReason ? shownName(name) + "\n\n" + sharedReason : shownName(name);
        case Qt::AccessibleDescriptionRole:
            return sharedReason ? QVariant(sharedReason) : QVariant();
        case Qt::DecorationRole:
            if (!sharedReason || !isMarked) return {};
            return glyphIcon(Glyph::rings, &LookColors::warningMark);
        default:
            return {};
    }
}

void SharedNames::add(const std::optional<SharedText>& name) {
    if (!name) return;
    const std::size_t count = ++counts_[*name];
    if (count == 2) shared_.push_back(*name);
    if (count >= 2) records_ += count == 2 ? 2 : 1;
}

bool SharedNames::isShared(const std::optional<SharedText>& name) const {
    if (!name) return false;
    const auto found = counts_.find(*name);
    return found != counts_.end() && found->second > 1;
}

QString sharedSpeciesLine(const SharedNames& names) {
    if (names.names().empty()) return {};
    const auto records = static_cast<qulonglong>(names.recordCount());
    if (names.names().size() > 1) {
        return QString(
                   "%L1 species share their name with another; the census matrix uses only the "
                   "last of each name.")
            .arg(records);
    }
    const QString name = QString::fromStdString(names.names().front().str());
    return QString("%L1 species share the name “%2”; the census matrix uses only the last of them.")
        .arg(records)
        .arg(shortened(oneLine(name), longestNameInSentence));
}

QString matrixNote(const SparseCountsResult& counts) {
    const QStringList sentences = countSentences({
        {counts.mergedCensuses,
         "One census has the name of an earlier one: the census matrix holds its species in the "
         "row of that one, and its own row stays empty.",
         "%1 censuses have the name of an earlier one: the census matrix holds their species "
         "in the row of that one, and their own rows stay empty."},
        {counts.replacedTaxa,
         "One species has the name of a later one of its census: the census matrix uses only the "
         "later one, and the pooled values add them up.",
         "%1 species have the name of a later one of their census: the census matrix uses only "
         "the later one, and the pooled values add them up."},
        {counts.taxaInNoRow,
         "One species is not in the census matrix, since it or its census has no name.",
         "%1 species are not in the census matrix, since they or their census have no name."},
    });
    return sentences.join(' ');
}

QString mergedNamesNote(const SparseCountsResult& counts) {
    const QString note = matrixNote(counts);
    if (note.isEmpty()) return {};
    return note + ' ' +
           "Averages, Chao2 and sample-based rarefaction are made from the census matrix.";
}

}  // namespace zorvel
