// The explanations of the window of diversity at equal coverage, and what its table does with keys
// and menus.
#include <QClipboard>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QKeySequence>
#include <QMenu>
#include <QStringList>
#include <algorithm>
#include <functional>
#include <utility>

#include "ui/analysis/curves_view.h"
#include "ui/analysis/diversity_readout.h"
#include "ui/analysis/diversity_tables.h"
#include "ui/analysis/diversity_window_controller.h"
#include "ui/kit/popover.h"
#include "ui_diversity_page.h"

namespace zorvel {

namespace {

// Runs the command when the keys are pressed in the widget, which then takes them before a shortcut
// of its window. For as long as the widget lives.
class OwnKey : public QObject {
  public:
    OwnKey(QWidget& widget, const QKeySequence& keys, std::function<void()> command)
        : QObject(&widget), keys_(keys), command_(std::move(command)) {
        widget.installEventFilter(this);
    }

  protected:
    bool eventFilter(QObject* /*watched*/, QEvent* event) override {
        const bool isPress = event->type() == QEvent::KeyPress;
        if (!isPress && event->type() != QEvent::ShortcutOverride) return false;
        const auto* key = static_cast<QKeyEvent*>(event);
        const auto modifiers = key->modifiers() & ~Qt::KeypadModifier;
        if (QKeySequence(QKeyCombination(modifiers, Qt::Key(key->key()))) != keys_) return false;
        event->accept();
        if (isPress) command_();
        return true;
    }

  private:
    QKeySequence keys_;
    std::function<void()> command_;
};

}  // namespace

void DiversityViewController::addExplanations() {
    QTableView& table = *ui_->diversityTable;
    const auto explainCurrent = [this] { explainCell(ui_->diversityTable->currentIndex()); };
    new OwnKey(table, Qt::Key_F1, explainCurrent);
    new OwnKey(table, QKeySequence::Copy, [this] { copyCells(); });
    connect(&table, &QTableView::doubleClicked, this, &DiversityViewController::explainCell);
    table.setContextMenuPolicy(Qt::CustomContextMenu);
    connect(&table, &QWidget::customContextMenuRequested, this, &DiversityViewController::showMenu);
    for (QWidget* widget : std::initializer_list<QWidget*>{
             ui_->curvesView, ui_->ofBox, ui_->orderBox, ui_->acrossBox, ui_->explainButton}) {
        new OwnKey(*widget, Qt::Key_F1, [this] { explainMarked(); });
    }
    connect(ui_->explainButton, &QPushButton::clicked, this,
            &DiversityViewController::explainMarked);
    for (QWidget* widget :
         std::initializer_list<QWidget*>{ui_->coverageField, ui_->commonCoverageButton}) {
        new OwnKey(*widget, Qt::Key_F1, [this] { explainCommon(); });
    }
}

void DiversityViewController::explain(const Explanation& explanation, const QWidget& of,
                                      const QRect& place) {
    Popover& popover = Popover::of(*window());
    popover.setExplanation(explanation);
    popover.showBeside({of.mapTo(window(), place.topLeft()), place.size()});
}

// Of a curve, or of the only one.
void DiversityViewController::explainPlot(std::optional<std::size_t> curve) {
    if (!curve && drawn_.size() == 1) curve = 0;
    const QWidget* button = ui_->explainButton;
    const bool isRead = ui_->curvesView->mark().has_value();
    explain(plotExplanation(view(), curve ? &drawn_[*curve] : nullptr,
                            isRead ? ui_->plotReadout->text() : QString()),
            *button, button->rect());
}

void DiversityViewController::explainMarked() {
    const auto& mark = ui_->curvesView->mark();
    explainPlot(mark ? std::optional(static_cast<std::size_t>(mark->curve)) : std::nullopt);
}

void DiversityViewController::explainCommon() {
    if (!common_) return explainPlot(std::nullopt);
    const QWidget* field = ui_->coverageField;
    explain(commonCoverageExplanation(*common_, (*curves_)[common_->limitedBy]), *field,
            field->rect());
}

void DiversityViewController::explainCell(const QModelIndex& cell) {
    if (!cell.isValid()) return explainPlot(std::nullopt);
    if (cell.model() == points_) return explainPlot(points_->curveOf(cell.row()));
    ui_->diversityTable->scrollTo(cell);
    const CoverageRow& row = coverages_->rows()[static_cast<std::size_t>(cell.row())];
    QStringList diversities;
    for (std::size_t q = 0; q < kHillOrders; ++q) {
        diversities.append(coverages_->diversityText(row, q));
    }
    explain(rowExplanation(row, CoverageTableModel::topicOf(cell.column()), diversities),
            *ui_->diversityTable->viewport(), ui_->diversityTable->visualRect(cell));
}

// The selected cells as rows, with tabs between them.
void DiversityViewController::copyCells() const {
    QModelIndexList cells = ui_->diversityTable->selectionModel()->selectedIndexes();
    std::sort(cells.begin(), cells.end());  // by row and column
    QString text;
    for (qsizetype i = 0; i < cells.size(); ++i) {
        if (i > 0) text += cells[i].row() == cells[i - 1].row() ? '\t' : '\n';
        text += cells[i].data().toString();
    }
    if (!cells.isEmpty()) QGuiApplication::clipboard()->setText(text);
}

void DiversityViewController::showMenu(const QPoint& place) {
    QTableView& table = *ui_->diversityTable;
    auto* menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->addAction("&Explain", this, [this] { explainCell(ui_->diversityTable->currentIndex()); })
        ->setShortcut(Qt::Key_F1);
    menu->addAction("&Copy", this, &DiversityViewController::copyCells)
        ->setShortcut(QKeySequence::Copy);
    menu->addAction("Select &All", &table, &QTableView::selectAll)
        ->setShortcut(QKeySequence::SelectAll);
    menu->popup(table.viewport()->mapToGlobal(place));
}

}  // namespace zorvel
