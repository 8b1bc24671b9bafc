// The tables of the window of diversity at equal coverage. Main thread.
#pragma once

#include <QAbstractTableModel>
#include <vector>

#include "ui/analysis/diversity_curves.h"

namespace zorvel {

// A row per curve: its diversity at one coverage. Rows without a value, and doubtful ones, are grey
// with the reason beside them.
class CoverageTableModel : public QAbstractTableModel {
    Q_OBJECT
  public:
    using QAbstractTableModel::QAbstractTableModel;

    void setRows(std::vector<CoverageRow> rows, std::optional<ConfidenceLevel> level);
    [[nodiscard]] const std::vector<CoverageRow>& rows() const { return rows_; }

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation,
                                      int role) const override;

  private:
    [[nodiscard]] QString textOf(const CoverageRow& row, int column) const;

    std::vector<CoverageRow> rows_;
    std::optional<ConfidenceLevel> level_;
};

// A row per point of the curves that are drawn.
class CurvePointsModel : public QAbstractTableModel {
    Q_OBJECT
  public:
    using QAbstractTableModel::QAbstractTableModel;

    void setCurves(const std::vector<PlotCurve>& curves, const QString& place,
                   const QString& value);
    // With commas or tabs between the cells.
    [[nodiscard]] QString text(char separator) const;

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation,
                                      int role) const override;

  private:
    struct Point {
        QString curve;
        bool predicted = false;
        QPointF at;
        std::optional<double> lower;
        std::optional<double> upper;
    };
    std::vector<Point> points_;
    QString place_;
    QString value_;
};

}  // namespace zorvel
