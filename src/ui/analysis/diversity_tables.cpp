#include "ui/analysis/diversity_tables.h"

#include <QApplication>
#include <QLocale>
#include <cmath>

#include "base/numbers.h"
#include "ui/analysis/diversity_readout.h"
#include "ui/kit/look.h"
#include "ui/kit/shown_text.h"

namespace zorvel {

namespace {

enum CoverageColumn { nameColumn, sizeColumn, ownColumn, neededColumn, firstOrder };

struct Column {
    const char* title;
    std::optional<DiversityTopic> topic;  // none for texts, which stand on the left
};

constexpr Column coverageColumns[] = {{"Census", std::nullopt},
                                      {"Specimens", DiversityTopic::size},
                                      {"Coverage", DiversityTopic::coverage},
                                      {"Size needed", DiversityTopic::neededSize},
                                      {"q = 0", DiversityTopic::richness},
                                      {"q = 1", DiversityTopic::shannon},
                                      {"q = 2", DiversityTopic::simpson},
                                      {"Note", std::nullopt}};

QString fixed(double value, int digits) {
    return std::isfinite(value) ? QString::fromStdString(fixedText(value, digits)) : QString("-");
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
    return coverageColumns[column].topic;
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
            return QLocale().toString(row.sample.size, 'f', 0);
        case ownColumn:
            return row.coverage ? fixed(*row.coverage, 4) : "-";
        case neededColumn:
            return row.at ? sizeText(row.at->size) : "-";
        case remarkColumn:
            return row.remark;
        default:
            return diversityText(row, static_cast<std::size_t>(column - firstOrder));
    }
}

QString CoverageTableModel::diversityText(const CoverageRow& row, std::size_t order) const {
    if (!row.at) return "-";
    const double value = row.at->diversity[order];
    QString text = fixed(value, 2);
    if (!level_ || !row.errors || !(*row.errors)[order]) return text;
    const ConfidenceLimits limits = diversityLimits(value, *(*row.errors)[order]);
    return QString("%1 (%2 – %3)")
        .arg(text, fixed(lowerLimit(limits, *level_), 2), fixed(upperLimit(limits, *level_), 2));
}

QVariant CoverageTableModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid()) return {};
    const CoverageRow& row = rows_[static_cast<std::size_t>(index.row())];
    const int column = index.column();
    if (role == Qt::DisplayRole) return textOf(row, column);
    if (role == Qt::ToolTipRole) return row.remark.isEmpty() ? QVariant() : row.remark;
    if (role == Qt::TextAlignmentRole) return topicOf(column) ? alignRight : alignLeft;
    if (role == Qt::ForegroundRole && !row.remark.isEmpty()) {
        return lookColors(QApplication::palette()).secondary;
    }
    return {};
}

QVariant CoverageTableModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal) return {};
    const SampleKind kind = rows_.empty() ? SampleKind::abundance : rows_.front().sample.kind;
    const std::optional<DiversityTopic> topic = topicOf(section);
    if (role == Qt::TextAlignmentRole) return topic ? alignRight : alignLeft;
    if (role == Qt::DisplayRole) {
        return section == sizeColumn ? explanationOf(*topic, kind).name
                                     : coverageColumns[section].title;
    }
    if (role == Qt::ToolTipRole) {
        const QString meaning = topic ? explanationOf(*topic, kind).meaning : "All of a row";
        return meaning + "\nF1 or a double click on a cell tells how it is computed.";
    }
    return {};
}

// Over orders, the limits are those of the estimate, and both lines run over all orders.
void CurvePointsModel::setCurves(const std::vector<PlotCurve>& curves, const DiversityView& view,
                                 std::optional<ConfidenceLevel> level) {
    const auto cellAt = [](const QPolygonF& line, double x) {
        const std::optional<double> value = valueAt(line, x);
        return value ? fixed(*value, 3) : "-";
    };
    const QString limits = level ? " limit (" + confidenceLevelText(*level) + ')' : " limit";
    const bool isProfile = view.across == DiversityAcross::orders;
    beginResetModel();
    titles_ = {"Curve",           "Part",           widthTitle(view),
               heightTitle(view), "Lower" + limits, "Upper" + limits};
    rows_.clear();
    for (std::size_t i = 0; i < curves.size(); ++i) {
        const PlotCurve& curve = curves[i];
        for (const bool predicted : {false, true}) {
            QPolygonF line = predicted ? curve.predicted : curve.known;
            // The predicted part begins with the last known point.
            if (predicted && !isProfile && !curve.known.isEmpty()) line = line.mid(1);
            const bool isLimited = predicted || !isProfile;
            for (const QPointF& point : line) {
                const double x = point.x();
                rows_.push_back({i,
                                 {oneLine(curve.label), partText(view, predicted),
                                  fixed(x, x == std::floor(x) ? 0 : 4), fixed(point.y(), 3),
                                  isLimited ? cellAt(curve.lower, x) : "-",
                                  isLimited ? cellAt(curve.upper, x) : "-"}});
            }
        }
    }
    endResetModel();
}

int CurvePointsModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

int CurvePointsModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(titles_.size());
}

QVariant CurvePointsModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid()) return {};
    return cellData(rows_[static_cast<std::size_t>(index.row())].cells, index.column(), role);
}

QVariant CurvePointsModel::headerData(int section, Qt::Orientation orientation, int role) const {
    return orientation == Qt::Horizontal ? cellData(titles_, section, role) : QVariant();
}

QVariant CurvePointsModel::cellData(const QStringList& cells, int column, int role) {
    if (role == Qt::TextAlignmentRole) return column < 2 ? alignLeft : alignRight;
    return role == Qt::DisplayRole ? cells[column] : QVariant();
}

QString CurvePointsModel::text(char separator) const {
    std::string text;
    const auto add = [&](const QStringList& texts) {
        TableCells cells;
        for (const QString& cell : texts) cells.push_back(cell.toStdString());
        text += tableLine(cells, separator);
    };
    add(titles_);
    for (const Row& row : rows_) add(row.cells);
    return QString::fromStdString(text);
}

}  // namespace zorvel
