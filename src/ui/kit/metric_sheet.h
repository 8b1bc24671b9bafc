// The values of a panel or window of metrics: what stands in each row, whose value it is, and what
// it tells about itself beside its row, on demand. A value that has not come yet, or that cannot be
// had, leaves the row as it was, grey where it shows another subject's. Main thread.
#pragma once

#include <QList>
#include <QObject>
#include <QPointer>
#include <QString>
#include <functional>
#include <optional>
#include <vector>

#include "ui/kit/explanation_text.h"
#include "ui/kit/metric_rows.h"

namespace zorvel {

class Popover;

// A row as it is copied or printed.
struct MetricLine {
    QString heading;  // that stands above it; mostly empty
    QString caption;
    QString text;
};

class MetricSheet : public QObject {
    Q_OBJECT
  public:
    using DetailsOf = std::function<MetricDetails(int row)>;

    // host: the panel that holds the rows and owns the sheet. detailsOf is asked whenever an
    // explanation is shown.
    MetricSheet(MetricRows::Rows rows, QWidget* host, DetailsOf detailsOf);
    ~MetricSheet() override;

    // The census or project that the values belong to from now on. Before it is named, nothing is
    // explained and nothing copied.
    void setSubject(const QString& subject);

    // The value has come. The caption tells of the parameter that it was computed with.
    void show(int row, const QString& caption, const QString& text);
    // Of a value that has come: what is particular about it, see ValueField.
    void mark(int row, const QString& mark, const QString& meaning);
    // It is on its way: the row keeps its caption and text. reason: why that text is grey; empty
    // where the row has none.
    void expect(int row, const QString& caption, const QString& reason);
    // There is no value for the subject, and the row keeps its caption and text. The caption is the
    // one that goes with the subject.
    void showAbsent(int row, const QString& caption, const QString& reason);
    // Without a word on the value.
    void setCaption(int row, const QString& caption);

    // A line of its own above the row in what is copied.
    void setHeading(int row, const QString& heading);
    // The rows as they stand; none before a subject is named. The text is "-" where there is no
    // value, and empty where it is still on its way.
    [[nodiscard]] QList<MetricLine> lines() const;
    // The subject, then a line a value: its caption, a tab, the text.
    [[nodiscard]] QString text() const;
    void copyAll() const;

    // Beside the row; closes the explanation where it is that row's.
    void explain(int row);
    // What an open explanation says; after details or colours have changed.
    void followValues();

  private:
    struct Shown {
        enum class State { there, pending, absent };
        CaptionedValue row;
        State state = State::there;
        QString caption;  // that goes with the subject
        QString heading;
    };

    Shown& at(int row) { return rows_[static_cast<std::size_t>(row)]; }
    [[nodiscard]] static QString copied(const Shown& shown);
    void updateExplanation();

    QWidget* host_;
    DetailsOf detailsOf_;
    std::vector<Shown> rows_;
    std::optional<QString> subject_;
    QPointer<Popover> popover_;
    int explained_ = -1;  // the row that the popover is about
};

}  // namespace zorvel
