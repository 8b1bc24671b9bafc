#include "ui/analysis/diversity_tables.h"

#include <QApplication>
#include <QLocale>
#include <QPalette>
#include <cmath>

#include "base/numbers.h"
#include "ui/kit/look.h"
#include "ui/kit/shown_text.h"

namespace zorvel {

namespace {

enum CoverageColumn {
    nameColumn,
    sizeColumn,
    ownColumn,
    neededColumn,
    firstOrder,
    remarkColumn = 7
};

QString fixed(double value, int digits) {
    return std::isfinite(value) ? QString::fromStdString(fixedText(value, digits)) : QString("-");
}

QString whole(double value) {
    return QLocale().toString(value, 'f', 0);
}

// One decimal, unless it is whole as far as that shows.
QString sizeText(double size) {
    return fixed(size, std::fabs(size - std::round(size)) < 0.05 ? 0 : 1);
}

constexpr int alignRight = Qt::AlignRight | Qt::AlignVCenter;
constexpr int alignLeft = Qt::AlignLeft | Qt::AlignVCenter;

}  // namespace

void CoverageTableModel::setRows(std::vector<CoverageRow> rows,
                                 std::optional<ConfidenceLevel> level) {
    level_ = level;
    if (rows.size() == rows_.size()) {
        rows_ = std::move(rows);
        if (!rows_.empty()) {
            emit dataChanged(index(0, 0), index(rowCount() - 1, columnCount() - 1));
        }
        return;
    }
    beginResetModel();
    rows_ = std::move(rows);
    endResetModel();
}

int CoverageTableModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

int CoverageTableModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : remarkColumn + 1;
}

QString CoverageTableModel::textOf(const CoverageRow& row, int column) const {
    switch (column) {
        case nameColumn:
            return oneLine(row.name);
        case sizeColumn:
            return whole(row.size);
        case ownColumn:
            return row.coverage ? fixed(*row.coverage, 4) : "-";
        case neededColumn:
            return row.at ? sizeText(row.at->size) : "-";
        case remarkColumn:
            return row.remark;
        default:
            break;
    }
    if (!row.at) return "-";
    const auto order = static_cast<std::size_t>(column - firstOrder);
    const double value = row.at->diversity[order];
    QString text = fixed(value, 2);
    if (!level_ || !row.errors || !(*row.errors)[order]) return text;
    const ConfidenceLimits limits = diversityLimits(value, *(*row.errors)[order]);
    const bool is95 = *level_ == ConfidenceLevel::percent95;
    return QString("%1 (%2 – %3)")
        .arg(text, fixed(is95 ? limits.lower95 : limits.lower99, 2),
             fixed(is95 ? limits.upper95 : limits.upper99, 2));
}

QVariant CoverageTableModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid()) return {};
    const CoverageRow& row = rows_[static_cast<std::size_t>(index.row())];
    const int column = index.column();
    if (role == Qt::DisplayRole) return textOf(row, column);
    if (role == Qt::ToolTipRole) return row.remark.isEmpty() ? QVariant() : row.remark;
    if (role == Qt::TextAlignmentRole) {
        return column == nameColumn || column == remarkColumn ? alignLeft : alignRight;
    }
    if (role == Qt::ForegroundRole && !row.remark.isEmpty()) {
        return lookColors(QApplication::palette()).secondary;
    }
    return {};
}

QVariant CoverageTableModel::headerData(int section, Qt::Orientation orientation, int role) const {
    static const char* const titles[] = {"Census", "Specimens", "Coverage", "Size needed",
                                         "q = 0",  "q = 1",     "q = 2",    "Note"};
    static const char* const meanings[] = {
        "",
        "Specimens, or censuses where presences are compared",
        "The estimated share of all specimens in the community that belong to species found here",
        "The size of a sample with the coverage in the field above",
        "Species richness: rare species count fully",
        "Shannon diversity, e^H: species count in proportion",
        "Simpson diversity, 1 / sum of p²: rare species hardly count",
        ""};
    if (orientation != Qt::Horizontal) return {};
    if (role == Qt::DisplayRole) return titles[section];
    if (role == Qt::ToolTipRole) return meanings[section];
    if (role == Qt::TextAlignmentRole) {
        return section == nameColumn || section == remarkColumn ? alignLeft : alignRight;
    }
    return {};
}

void CurvePointsModel::setCurves(const std::vector<PlotCurve>& curves, const QString& place,
                                 const QString& value) {
    beginResetModel();
    place_ = place;
    value_ = value;
    points_.clear();
    for (const PlotCurve& curve : curves) {
        qsizetype limit = 0;
        for (const bool predicted : {false, true}) {
            for (const QPointF& at : predicted ? curve.predicted : curve.known) {
                // The predicted part begins with the last known point.
                if (predicted && !curve.known.isEmpty() && at == curve.known.last()) continue;
                Point point{curve.label, predicted, at, {}, {}};
                while (limit < curve.lower.size() && curve.lower[limit].x() < at.x()) ++limit;
                if (limit < curve.lower.size() && curve.lower[limit].x() == at.x()) {
                    point.lower = curve.lower[limit].y();
                    point.upper = curve.upper[limit].y();
                }
                points_.push_back(point);
            }
        }
    }
    endResetModel();
}

int CurvePointsModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(points_.size());
}

int CurvePointsModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : 6;
}

QVariant CurvePointsModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid()) return {};
    const bool isName = index.column() == 0 || index.column() == 1;
    if (role == Qt::TextAlignmentRole) return isName ? alignLeft : alignRight;
    if (role != Qt::DisplayRole) return {};
    const Point& point = points_[static_cast<std::size_t>(index.row())];
    switch (index.column()) {
        case 0:
            return oneLine(point.curve);
        case 1:
            return point.predicted ? "predicted" : "from the sample";
        case 2:
            return fixed(point.at.x(), point.at.x() == std::floor(point.at.x()) ? 0 : 4);
        case 3:
            return fixed(point.at.y(), 3);
        case 4:
            return point.lower ? fixed(*point.lower, 3) : "-";
        default:
            return point.upper ? fixed(*point.upper, 3) : "-";
    }
}

QVariant CurvePointsModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal) return {};
    if (role == Qt::TextAlignmentRole) return section < 2 ? alignLeft : alignRight;
    if (role != Qt::DisplayRole) return {};
    const QString titles[] = {"Curve", "Part", place_, value_, "Lower limit", "Upper limit"};
    return titles[section];
}

QString CurvePointsModel::text(char separator) const {
    std::string text;
    const auto add = [&](const auto& cell) {
        TableCells cells;
        for (int column = 0; column < columnCount(); ++column) {
            cells.push_back(cell(column).toString().toStdString());
        }
        text += tableLine(cells, separator);
    };
    add([this](int column) { return headerData(column, Qt::Horizontal, Qt::DisplayRole); });
    for (int row = 0; row < rowCount(); ++row) {
        add([&](int column) { return data(index(row, column), Qt::DisplayRole); });
    }
    return QString::fromStdString(text);
}

}  // namespace zorvel
