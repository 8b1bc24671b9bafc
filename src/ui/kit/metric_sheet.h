// Rows of metrics in a panel or window, each a caption and a value. They show whose value stands in
// each row, whether it is still to come, and what it means beside its row, on demand. The arrow
// keys go from value to value, F1 or a click on a row explains it, a context menu copies. Main
// thread.
#pragma once

#include <QList>
#include <QObject>
#include <QPoint>
#include <QPointer>
#include <QString>
#include <optional>
#include <vector>

#include "metrics/metric_table.h"
#include "model/metric_explanations.h"

class QContextMenuEvent;
class QKeyEvent;
class QLabel;
class QMouseEvent;

namespace zorvel {

class Card;
class Popover;
class ValueField;

// A row as it is copied or printed.
struct MetricLine {
    QString heading;  // above the row; usually empty
    QString caption;
    QString text;
};

class MetricSheet : public QObject {
    Q_OBJECT
  public:
    // host: the panel that shows the rows and owns the sheet.
    explicit MetricSheet(QWidget& host);

    // Makes rows in the order in which they are to be copied and gone through: one with a large
    // value, or one below the other. The host lays the card out.
    // heading: a line of its own above the row in what is copied.
    Card* makeLargeCard(const ShownMetric& shown, const QString& heading = {});
    Card* makeListCard(const std::vector<ShownMetric>& list);

    // The census or project that the values belong to from now on. Before it is named, nothing is
    // explained and nothing copied.
    void setSubject(const QString& subject) { subject_ = subject; }
    // What the values to come are computed with. Before they are known, captions have none.
    void setParameters(const MetricParameters& parameters);
    // What the explanations are about.
    [[nodiscard]] MetricInputs& inputs() { return inputs_; }

    // The value has come. An absent one leaves the row as it was, grey where it shows another
    // subject's, and says why.
    void show(const ShownMetric& shown, const MetricValue& value, const QString& reason = {});
    // It is on its way: the row keeps its caption and text. reason: why that text is grey; empty
    // where the row has none.
    void expect(const ShownMetric& shown, const QString& reason = {});
    // There will be no value, and no reason is shown.
    void leaveEmpty(const ShownMetric& shown);
    // What is particular about a value that has come, see ValueField.
    void mark(const ShownMetric& shown, const QString& mark, const QString& meaning);

    // The rows as they stand; none before a subject is named. The text is "-" where there is no
    // value, and empty where it is still on its way.
    [[nodiscard]] QList<MetricLine> lines() const;
    // The subject, then a line per value: its caption, a tab, the text.
    void copyAll() const;
    void focusRow(std::size_t row);

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    enum class State { there, pending, absent };
    struct Row {
        ShownMetric shown;
        ValueField* value;
        QLabel* caption;
        State state = State::there;
        QString subjectCaption;  // the label may still show that of another subject
        QString heading;
    };

    Row& makeRow(const ShownMetric& shown, Card& card);
    Row& rowOf(const ShownMetric& shown);
    [[nodiscard]] QString captionOf(const ShownMetric& shown) const;
    void setState(Row& row, State state, const QString& staleReason);
    static void setCaption(Row& row, const QString& caption);

    [[nodiscard]] std::optional<std::size_t> rowAt(const QWidget* widget,
                                                   const QPoint& place) const;
    bool keyDidPress(std::size_t row, const QKeyEvent& event);
    void mouseDidRelease(const QWidget* widget, const QMouseEvent& event);
    void showMenu(std::size_t row, const QPoint& place);
    void explain(std::size_t row);
    void followValues();
    void updateExplanation();

    QWidget& host_;
    std::vector<Row> rows_;
    std::optional<QString> subject_;
    MetricInputs inputs_;
    bool hasParameters_ = false;
    QPointer<Popover> popover_;
    std::size_t explained_ = 0;  // the row that the popover is about
    QPoint pressed_;             // on the screen
};

}  // namespace zorvel
