// How a person moves over rows of metrics: the arrow keys go from value to value, F1 or a click on
// a row asks for its explanation, a context menu copies. A row is a caption and a value, whose
// widgets belong to the panel that shows them. Main thread.
#pragma once

#include <QObject>
#include <QRect>
#include <string_view>
#include <vector>

class QContextMenuEvent;
class QKeyEvent;
class QLabel;
class QMouseEvent;
class QWidget;

namespace zorvel {

class ValueField;

struct CaptionedValue {
    std::string_view key;  // of its explanation
    ValueField* value;
    QLabel* caption;
};

class MetricRows : public QObject {
    Q_OBJECT
  public:
    using Rows = std::vector<CaptionedValue>;

    // In the order in which they stand.
    MetricRows(Rows rows, QWidget* panel);

    // From edge to edge of its card, in the coordinates of the widget, which holds the card.
    [[nodiscard]] static QRect placeIn(const QWidget& widget, const CaptionedValue& row);

  signals:
    void explanationRequested(int row);
    void copyAllRequested();

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    [[nodiscard]] int rowAt(const QWidget* widget, const QPoint& place) const;
    bool keyDidPress(int row, const QKeyEvent& event);
    void focusRow(int row);
    void mouseDidRelease(const QWidget* widget, const QMouseEvent& event);
    void showMenu(int row, const QPoint& place);

    Rows rows_;
    QWidget* panel_;
    QPoint pressed_;  // on the screen
};

}  // namespace zorvel
