// The tables of the window of diversity at equal coverage. Main thread.
#pragma once

#include <QAbstractTableModel>
#include <QStringList>
#include <optional>
#include <vector>

#include "model/diversity_explanations.h"
#include "ui/analysis/diversity_curves.h"

namespace zorvel {

// A row per curve: its diversity at one coverage. Rows without a value, and doubtful ones, are grey
// with the reason beside them.
class CoverageTableModel : public QAbstractTableModel {
    Q_OBJECT
  public:
    static constexpr int remarkColumn = 7;  // the last

    using QAbstractTableModel::QAbstractTableModel;

    void setRows(std::vector<CoverageRow> rows);
    // Of the rows from the first on.
    void setErrors(std::size_t first,
                   const std::vector<std::optional<StandardErrors::Orders>>& errors);
    // Of the limits; absent: none.
    void setLevel(std::optional<ConfidenceLevel> level);
    [[nodiscard]] const std::vector<CoverageRow>& rows() const { return rows_; }
    // What a column says: a topic, or none for the name and the remark.
    [[nodiscard]] static std::optional<DiversityTopic> topicOf(int column);
    // "10.74 (9.1 – 12.4)", of order 0, 1 or 2.
    [[nodiscard]] QString diversityText(const CoverageRow& row, std::size_t order) const;

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

    void setCurves(const std::vector<PlotCurve>& curves, const DiversityView& view,
                   std::optional<ConfidenceLevel> level);
    // The place of a row's curve.
    [[nodiscard]] std::size_t curveOf(int row) const {
        return rows_[static_cast<std::size_t>(row)].curve;
    }
    // With commas or tabs between the cells.
    [[nodiscard]] QString text(char separator) const;

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation,
                                      int role) const override;

  private:
    struct Row {
        std::size_t curve = 0;
        QStringList cells;
    };
    [[nodiscard]] static QVariant cellData(const QStringList& cells, int column, int role);

    QStringList titles_;
    std::vector<Row> rows_;
};

}  // namespace zorvel
