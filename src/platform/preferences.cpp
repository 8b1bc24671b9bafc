#include "platform/preferences.h"

#include <QByteArray>
#include <QHash>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRgba64>
#include <QVariant>
#include <algorithm>

#include "base/console.h"
#include "platform/settings.h"

namespace zorvel {

namespace {

const char rarefactionSizeKey[] = "rarefactionSize";
const char sqsQuotaKey[] = "sqsQuota";
const char confidenceKey[] = "confidence";
const char plotColorKey[] = "plotColor";
const char imageFormatKey[] = "imageFormat";
const char imageWidthKey[] = "imageWidth";
const char imageResolutionKey[] = "imageResolution";
const char plotTitlesKey[] = "plotTitles";
const char diversityOrderKey[] = "diversityOrder";
const char diversityAcrossKey[] = "diversityAcross";

using Defaults = QHash<QString, QVariant>;

Defaults& registeredDefaults() {
    static Defaults defaults;
    return defaults;
}

QVariant read(const char* key) {
    return setting(key, registeredDefaults().value(key));
}

QColor red() {
    return {255, 0, 0};
}

// {"rgba64":[red,green,blue,alpha]}, each 0 to 65535.
QByteArray archive(const QColor& color) {
    const QRgba64 rgba = color.rgba64();
    const QJsonArray parts{rgba.red(), rgba.green(), rgba.blue(), rgba.alpha()};
    return QJsonDocument(QJsonObject{{"rgba64", parts}}).toJson(QJsonDocument::Compact);
}

// Not valid if the document is no such colour.
QColor colorOf(const QJsonDocument& document) {
    const QJsonArray parts = document.object().value("rgba64").toArray();
    if (parts.size() != 4) return {};
    quint16 values[4] = {};
    for (int i = 0; i < 4; ++i) {
        const int part = parts[i].toInt(-1);
        if (part < 0 || part > 0xffff) return {};
        values[i] = static_cast<quint16>(part);
    }
    return QColor(QRgba64::fromRgba64(values[0], values[1], values[2], values[3]));
}

}  // namespace

void Preferences::initializePreferences() {
    registeredDefaults() = {{rarefactionSizeKey, 50},
                            {sqsQuotaKey, 0.8},
                            {confidenceKey, 0.95},
                            {plotColorKey, archive(red())}};
}

std::int64_t Preferences::rarefactionSize() const {
    return read(rarefactionSizeKey).toLongLong();
}

std::int64_t Preferences::limitedSize(std::int64_t size) {
    return std::max<std::int64_t>(size, 1);
}

void Preferences::setRarefactionSize(std::int64_t size) {
    storeSetting(rarefactionSizeKey, QVariant::fromValue<qlonglong>(limitedSize(size)));
}

double Preferences::sqsQuota() const {
    return read(sqsQuotaKey).toDouble();
}

double Preferences::limitedQuota(double quota) {
    return quota < 0 ? 0.1 : quota > 1.0 ? 0.99 : quota;
}

void Preferences::setSqsQuota(double quota) {
    storeSetting(sqsQuotaKey, limitedQuota(quota));
}

double Preferences::confidence() const {
    return read(confidenceKey).toDouble();
}

void Preferences::setConfidence(double confidence) {
    storeSetting(confidenceKey, confidence);
}

QColor Preferences::plotColor() const {
    const QVariant stored = read(plotColorKey);
    if (stored.typeId() != QMetaType::QByteArray) return red();
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(stored.toByteArray(), &error);
    if (error.error != QJsonParseError::NoError) {
        writeConsoleLine("WARNING: Could not read plot color from preferences");
        return red();
    }
    const QColor color = colorOf(document);
    return color.isValid() ? color : red();
}

void Preferences::setPlotColor(const QColor& color) {
    storeSetting(plotColorKey, archive(color));
}

PlotImage Preferences::plotImage() const {
    PlotImage image;
    image.svg = read(imageFormatKey).toString() == "svg";
    const double width = read(imageWidthKey).toDouble();
    if (width >= PlotImage::leastWidth && width <= PlotImage::mostWidth) image.widthCm = width;
    const int dpi = read(imageResolutionKey).toInt();
    if (dpi >= PlotImage::leastDpi && dpi <= PlotImage::mostDpi) image.dpi = dpi;
    const QVariant titles = read(plotTitlesKey);
    if (titles.isValid()) image.titles = titles.toBool();
    return image;
}

void Preferences::setPlotImage(const PlotImage& image) {
    storeSetting(imageFormatKey, image.svg ? "svg" : "png");
    storeSetting(imageWidthKey, image.widthCm);
    storeSetting(imageResolutionKey, image.dpi);
    storeSetting(plotTitlesKey, image.titles);
}

DiversityPlot Preferences::diversityPlot() const {
    const auto choice = [](const char* key, int otherwise) {
        bool isNumber = false;
        const int stored = read(key).toInt(&isNumber);
        return isNumber && stored >= 0 && stored <= 2 ? stored : otherwise;
    };
    const DiversityPlot plot;
    return {choice(diversityOrderKey, plot.order), choice(diversityAcrossKey, plot.across)};
}

void Preferences::setDiversityPlot(const DiversityPlot& plot) {
    storeSetting(diversityOrderKey, plot.order);
    storeSetting(diversityAcrossKey, plot.across);
}

}  // namespace zorvel
