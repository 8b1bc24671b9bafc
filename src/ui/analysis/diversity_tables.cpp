#include "ui/analysis/diversity_tables.h"

#include <QApplication>
#include <QLocale>
#include <QPalette>
#include <cmath>

#include "base/numbers.h"
#include "ui/analysis/diversity_readout.h"
#include "ui/kit/look.h"
#include "ui/kit/shown_text.h"

namespace zorvel {

namespace {

enum CoverageColumn { nameColumn, sizeColumn, ownColumn, neededColumn, firstOrder };

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

void CoverageTableModel::setRows(std::vector<CoverageRow> rows) {
    if (rows.size() != rows_.size()) {
        beginResetModel();
        rows_ = std::move(rows);
        endResetModel();
        return;
    }
    rows_ = std::move(rows);
    if (rows_.empty()) return;
    emit dataChanged(index(0, 0), index(rowCount() - 1, columnCount() - 1));
    emit headerDataChanged(Qt::Horizontal, sizeColumn, sizeColumn);
}

void CoverageTableModel::setErrors(
    std::size_t first, const std::vector<std::optional<StandardErrors::Orders>>& errors) {
    for (std::size_t i = 0; i < errors.size(); ++i) rows_[first + i].errors = errors[i];
    const int top = static_cast<int>(first);
    const int count = static_cast<int>(errors.size());
    if (count > 0) emit dataChanged(index(top, 0), index(top + count - 1, columnCount() - 1));
}

void CoverageTableModel::setLevel(std::optional<ConfidenceLevel> level) {
    if (level == level_) return;
    level_ = level;
    setRows(rows_);
}

std::optional<DiversityTopic> CoverageTableModel::topicOf(int column) {
    switch (column) {
        case nameColumn:
        case remarkColumn:
            return std::nullopt;
        case sizeColumn:
            return DiversityTopic::size;
        case ownColumn:
            return DiversityTopic::coverage;
        case neededColumn:
            return DiversityTopic::neededSize;
        default:
            return topicOfOrder(static_cast<std::size_t>(column - firstOrder));
    }
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
            return whole(row.sample.size);
        case ownColumn:
            return row.coverage ? fixed(*row.coverage, 4) : "-";
        case neededColumn:
            return row.at ? sizeText(row.at->size) : "-";
        case remarkColumn:
            return row.remark;
        default:
            break;
    }
    return diversityText(row, static_cast<std::size_t>(column - firstOrder));
}

QString CoverageTableModel::diversityText(const CoverageRow& row, std::size_t order) const {
    if (!row.at) return "-";
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
    if (orientation != Qt::Horizontal) return {};
    const SampleKind kind = rows_.empty() ? SampleKind::abundance : rows_.front().sample.kind;
    if (role == Qt::DisplayRole) {
        if (section == sizeColumn) return explanationOf(DiversityTopic::size, kind).name;
        return titles[section];
    }
    if (role == Qt::ToolTipRole) {
        const std::optional<DiversityTopic> topic = topicOf(section);
        const QString meaning = topic ? explanationOf(*topic, kind).meaning : "All of a row";
        return meaning + "\nF1 or a double click on a cell tells how it is computed.";
    }
    if (role == Qt::TextAlignmentRole) {
        return section == nameColumn || section == remarkColumn ? alignLeft : alignRight;
    }
    return {};
}

// Over orders, the limits are those of the estimate, and both lines run over all orders.
void CurvePointsModel::setCurves(const std::vector<PlotCurve>& curves, const DiversityView& view,
                                 std::optional<ConfidenceLevel> level) {
    beginResetModel();
    view_ = view;
    level_ = level ? " (" + confidenceLevelText(*level) + ')' : QString();
    names_.clear();
    points_.clear();
    const bool isProfile = view.across == DiversityAcross::orders;
    for (const PlotCurve& curve : curves) {
        for (const bool predicted : {false, true}) {
            const QPolygonF& line = predicted ? curve.predicted : curve.known;
            for (qsizetype i = 0; i < line.size(); ++i) {
                // The predicted part begins with the last known point.
                if (predicted && !isProfile && !curve.known.isEmpty() && i == 0) continue;
                Point point{static_cast<std::size_t>(names_.size()), predicted, line[i], {}, {}};
                if (predicted || !isProfile) {
                    point.lower = valueAt(curve.lower, line[i].x());
                    point.upper = valueAt(curve.upper, line[i].x());
                }
                points_.push_back(point);
            }
        }
        names_.append(oneLine(curve.label));
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
            return names_[static_cast<qsizetype>(point.curve)];
        case 1:
            return partText(view_, point.predicted);
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
    const QString titles[] = {"Curve",
                              "Part",
                              widthTitle(view_),
                              heightTitle(view_),
                              "Lower limit" + level_,
                              "Upper limit" + level_};
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
