#include "ui/tables/sample_model.h"

#include <QBrush>
#include <QFont>
#include <QGuiApplication>
#include <algorithm>
#include <utility>

#include "ui/kit/glyphs.h"
#include "ui/kit/look.h"
#include "ui/kit/shown_text.h"
#include "ui/tables/table_texts.h"

namespace zorvel {

namespace {

constexpr std::size_t wholeRow = SIZE_MAX;

}  // namespace

void SampleModel::setPreview(std::shared_ptr<const TablePreview> preview) {
    beginResetModel();
    preview_ = std::move(preview);
    problems_.clear();
    for (const TableRemark& remark : preview_->problems.kept) {
        QString& text = problems_[{remark.row, remark.column.value_or(wholeRow)}];
        if (!text.isEmpty()) text += '\n';
        text += oneLine(QString::fromStdString(remark.reason));
    }
    endResetModel();
}

QModelIndex SampleModel::indexOf(const TableRemark& remark) const {
    if (!preview_) return {};
    const auto& rows = preview_->rows;
    const auto row = std::lower_bound(
        rows.begin(), rows.end(), remark.row,
        [](const TablePreview::Row& each, std::size_t number) { return each.number < number; });
    if (row == rows.end() || row->number != remark.row) return {};
    const auto& columns = preview_->columns;
    const auto column =
        std::lower_bound(columns.begin(), columns.end(), remark.column.value_or(columns.front()));
    if (column == columns.end()) return {};
    return index(static_cast<int>(row - rows.begin()), static_cast<int>(column - columns.begin()));
}

int SampleModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() || !preview_ ? 0 : static_cast<int>(preview_->rows.size());
}

int SampleModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() || !preview_ ? 0 : static_cast<int>(preview_->columns.size());
}

QString SampleModel::problemsAt(const QModelIndex& index) const {
    const std::size_t row = rowAt(index.row()).number;
    const auto ofCell = problems_.find({row, columnOf(index.column())});
    if (ofCell != problems_.end()) return ofCell->second;
    const auto ofRow = problems_.find({row, wholeRow});
    return index.column() == 0 && ofRow != problems_.end() ? ofRow->second : QString();
}

QVariant SampleModel::foreground(const QModelIndex& index) const {
    const LookColors& look = lookColors(QGuiApplication::palette());
    if (!problemsAt(index).isEmpty()) return QBrush(look.problem);
    const bool isRead = rowAt(index.row()).state != TablePreview::RowState::leftOut &&
                        roleOf(index.column()) != ColumnRole::ignored &&
                        roleOf(index.column()) != ColumnRole::total;
    return isRead ? QVariant() : QBrush(look.greyed);
}

QVariant SampleModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || !preview_) return {};
    const TablePreview::Row& row = rowAt(index.row());
    const auto cell = [&] {
        return oneLine(QString::fromStdString(row.cells[static_cast<std::size_t>(index.column())]));
    };
    switch (role) {
        case Qt::DisplayRole:
            return cell();
        case Qt::ForegroundRole:
            return foreground(index);
        case Qt::BackgroundRole:
            if (row.state == TablePreview::RowState::leftOut) return {};
            return QBrush(roleTint(roleOf(index.column()), QGuiApplication::palette()));
        case Qt::FontRole: {
            if (row.state == TablePreview::RowState::read) return {};
            QFont font = QGuiApplication::font();
            font.setStrikeOut(row.state == TablePreview::RowState::leftOut);
            font.setBold(row.state == TablePreview::RowState::header);
            return font;
        }
        case Qt::DecorationRole:
            if (problemsAt(index).isEmpty()) return {};
            return glyphIcon(Glyph::warning, &LookColors::problem);
        case Qt::ToolTipRole:
            return problemsAt(index);
        case Qt::AccessibleTextRole: {
            const QString left =
                row.state == TablePreview::RowState::leftOut ? QString(", left out") : QString();
            return QString::fromStdString(columnLetters(columnOf(index.column()))) +
                   QString::number(row.number) + ": " + cell() + left +
                   (problemsAt(index).isEmpty() ? QString() : ", problem: " + problemsAt(index));
        }
        default:
            return {};
    }
}

QVariant SampleModel::columnHeader(int section, int role) const {
    const std::size_t column = columnOf(section);
    const QString letters = QString::fromStdString(columnLetters(column));
    const QString caption = roleCaption(preview_->reading.layout, roleOf(section));
    switch (role) {
        case Qt::DisplayRole:
            return caption;
        case lettersRole:
            return letters;
        case columnRoleRole:
            return static_cast<int>(roleOf(section));
        case Qt::AccessibleTextRole: {
            const auto found = preview_->problemsOfColumn.find(column);
            const std::size_t problems =
                found == preview_->problemsOfColumn.end() ? 0 : found->second;
            return QString("Column %1, role %2").arg(letters, caption.toLower()) +
                   (problems == 0   ? QString()
                    : problems == 1 ? QString(", 1 problem")
                                    : QString(", %L1 problems").arg(qulonglong{problems}));
        }
        default:
            return {};
    }
}

QVariant SampleModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (!preview_ || section < 0) return {};
    if (orientation == Qt::Horizontal) {
        return section < columnCount() ? columnHeader(section, role) : QVariant();
    }
    if (section >= rowCount()) return {};
    if (role == Qt::DisplayRole) return QString::number(rowAt(section).number);
    if (role == Qt::AccessibleTextRole) return QString("Row %1").arg(rowAt(section).number);
    return {};
}

}  // namespace zorvel
