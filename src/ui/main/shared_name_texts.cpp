#include "ui/main/shared_name_texts.h"

#include <QCoreApplication>
#include <QGuiApplication>
#include <QIconEngine>
#include <QPainter>
#include <QPixmap>
#include <QStringList>
#include <algorithm>

#include "model/diversity_document.h"
#include "ui/kit/look.h"
#include "ui/kit/shown_text.h"

namespace zorvel {

namespace {

constexpr qsizetype longestName = 40;  // characters of a name within a sentence

QString tr(const char* text) {
    return QCoreApplication::translate("SharedNames", text);
}

// Two rings that overlap; on a selected row, whose colour may be any, with a ground of their own.
class SharedNameEngine : public QIconEngine {
  public:
    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State) override {
        const LookColors& colors = lookColors(QGuiApplication::palette());
        const double unit = std::min(rect.width(), rect.height()) / 16.0;
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        if (mode == QIcon::Selected) {
            painter->setPen(Qt::NoPen);
            painter->setBrush(colors.base);
            painter->drawRoundedRect(rect, 4, 4);
        }
        painter->translate(rect.center() + QPointF(0.5, 0.5));
        painter->setPen(QPen(colors.warningMark, 1.5 * unit));
        painter->setBrush(Qt::NoBrush);
        painter->drawEllipse(QPointF(-2.25 * unit, 0), 3.75 * unit, 3.75 * unit);
        painter->drawEllipse(QPointF(2.25 * unit, 0), 3.75 * unit, 3.75 * unit);
        painter->restore();
    }
    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
        QPixmap pixmap(size);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        paint(&painter, pixmap.rect(), mode, state);
        return pixmap;
    }
    [[nodiscard]] QIconEngine* clone() const override { return new SharedNameEngine; }
};

}  // namespace

QString sharedSpeciesReason() {
    return tr(
        "Another species of this census has the same name: the census matrix, and the averages, "
        "Chao2 and sample-based rarefaction made from it, take the last of them alone; the pooled "
        "values of the project add them up.");
}

QString sharedCensusReason() {
    return tr(
        "Another census has the same name: in the census matrix, and in the averages, Chao2 and "
        "sample-based rarefaction made from it, they are merged into the row of the first, and the "
        "rows of the others stay empty.");
}

QString sharedSpeciesLine(const SharedNames& names) {
    if (names.nameCount() == 0) return {};
    const auto records = static_cast<qulonglong>(names.recordCount());
    if (names.nameCount() > 1) {
        return tr("%L1 species share their name with another; the census matrix takes the last of "
                  "each name alone.")
            .arg(records);
    }
    const QString name = QString::fromStdString(names.oneName().str());
    return tr("%L1 species share the name “%2”; the census matrix takes the last of them alone.")
        .arg(records)
        .arg(shortened(oneLine(name), longestName));
}

QString matrixNote(const SparseCountsResult& counts) {
    const struct {
        std::size_t count;
        QString ofOne;
        QString ofMany;
    } cases[] = {
        {counts.mergedCensuses,
         tr("One census has the name of an earlier one: the census matrix holds its species in the "
            "row of that one, and its own row stays empty."),
         tr("%L1 censuses have the name of an earlier one: the census matrix holds their species "
            "in the row of that one, and their own rows stay empty.")},
        {counts.replacedTaxa,
         tr("One species has the name of a later one of its census: the census matrix takes the "
            "later one alone, and the pooled values add them up."),
         tr("%L1 species have the name of a later one of their census: the census matrix takes the "
            "later one alone, and the pooled values add them up.")},
        {counts.taxaInNoRow,
         tr("One species is not in the census matrix, since it or its census has no name."),
         tr("%L1 species are not in the census matrix, since they or their census have no name.")},
    };
    QStringList sentences;
    for (const auto& each : cases) {
        if (each.count == 1) sentences.append(each.ofOne);
        if (each.count > 1) sentences.append(each.ofMany.arg(qulonglong{each.count}));
    }
    return sentences.join(QLatin1Char(' '));
}

QString mergedNamesNote(const SparseCountsResult& counts) {
    const QString note = matrixNote(counts);
    if (note.isEmpty()) return {};
    return note + QLatin1Char(' ') +
           tr("Averages, Chao2 and sample-based rarefaction are made from the census matrix.");
}

const QIcon& sharedNameIcon() {
    static const QIcon icon(new SharedNameEngine);
    return icon;
}

}  // namespace zorvel
