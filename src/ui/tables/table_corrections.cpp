#include "ui/tables/table_corrections.h"

#include <QCryptographicHash>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <algorithm>

#include "platform/settings.h"

namespace zorvel {

namespace {

const char keptKey[] = "tables/corrections";
constexpr qsizetype mostKept = 50;  // headers

template <class T>
void put(QJsonObject& object, const char* key, const std::optional<T>& value) {
    if (value) object[QLatin1String(key)] = static_cast<int>(*value);
}

template <class T>
void take(const QJsonObject& object, const char* key, std::optional<T>& value, int most) {
    const int number = object[QLatin1String(key)].toInt(-1);
    if (number >= 0 && number <= most) value = static_cast<T>(number);
}

// Calls visit(key, value, largest number) for each value that is a number.
template <class Corrections, class Visit>
void forEachNumber(Corrections& corrections, const Visit& visit) {
    constexpr int lastCharacter = 127;
    constexpr int lastRow = 1000;
    visit("separator", corrections.choices.separator, lastCharacter);
    visit("encoding", corrections.choices.encoding, static_cast<int>(TableEncoding::windows1252));
    visit("layout", corrections.choices.layout, static_cast<int>(TableLayout::records));
    visit("firstRow", corrections.choices.firstRow, lastRow);
    visit("headerRows", corrections.choices.headerRows, lastRow);
    visit("decimalMark", corrections.decimalMark, lastCharacter);
    visit("thousandsMark", corrections.thousandsMark, lastCharacter);
    visit("dateOrder", corrections.dateOrder, static_cast<int>(DateOrder::monthFirst));
    visit("presence", corrections.presence, 1);
    visit("missing", corrections.missing, static_cast<int>(MissingRule::leaveOut));
    visit("fractions", corrections.fractions, static_cast<int>(FractionRule::round));
    visit("sameSpecies", corrections.sameSpecies, static_cast<int>(SameRule::apart));
    visit("sameCensus", corrections.sameCensus, static_cast<int>(SameRule::apart));
    visit("unnamed", corrections.unnamed, static_cast<int>(UnnamedRule::above));
}

QString hashOf(const std::string& header) {
    const QByteArray bytes = QByteArray::fromStdString(header);
    return QString::fromLatin1(
        QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex().left(32));
}

QJsonArray kept() {
    return QJsonDocument::fromJson(setting(keptKey).toByteArray()).array();
}

}  // namespace

QString correctionsText(const TableCorrections& corrections) {
    QJsonObject object;
    forEachNumber(corrections,
                  [&](const char* key, const auto& value, int) { put(object, key, value); });
    QJsonObject roles;
    for (const auto& [column, role] : corrections.roles) {
        roles[QString::number(column)] = static_cast<int>(role);
    }
    if (!roles.isEmpty()) object["roles"] = roles;
    QJsonArray faults;
    for (const CountFault fault : corrections.takenAsZero) faults.append(static_cast<int>(fault));
    if (!faults.isEmpty()) object["zero"] = faults;
    return QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact));
}

TableCorrections readCorrections(const QString& text) {
    const QJsonObject object = QJsonDocument::fromJson(text.toUtf8()).object();
    TableCorrections corrections;
    forEachNumber(corrections,
                  [&](const char* key, auto& value, int most) { take(object, key, value, most); });
    const QJsonObject roles = object["roles"].toObject();
    for (auto role = roles.begin(); role != roles.end(); ++role) {
        constexpr unsigned mostColumns = 16384;
        bool isNumber = false;
        const unsigned column = role.key().toUInt(&isNumber);
        const int value = role.value().toInt(-1);
        if (!isNumber || column >= mostColumns || value < 0) continue;
        if (value > static_cast<int>(ColumnRole::ignored)) continue;
        corrections.roles[column] = static_cast<ColumnRole>(value);
    }
    for (const auto& fault : object["zero"].toArray()) {
        const int value = fault.toInt(-1);
        if (value < 0 || value > static_cast<int>(CountFault::notANumber)) continue;
        corrections.takenAsZero.push_back(static_cast<CountFault>(value));
    }
    return corrections;
}

std::optional<TableCorrections> keptCorrections(const std::string& header) {
    const QString hash = hashOf(header);
    for (const auto& each : kept()) {
        const QJsonObject object = each.toObject();
        if (object["header"] == hash) return readCorrections(object["corrections"].toString());
    }
    return std::nullopt;
}

// The newest are kept, the last used first.
void keepCorrections(const std::string& header, const TableCorrections& corrections) {
    const QString hash = hashOf(header);
    const QString text = correctionsText(corrections);
    QJsonArray all;
    if (text != correctionsText({})) {
        all.append(QJsonObject{{"header", hash}, {"corrections", text}});
    }
    for (const auto& each : kept()) {
        if (each.toObject()["header"] != hash && all.size() < mostKept) all.append(each);
    }
    storeSetting(keptKey, QJsonDocument(all).toJson(QJsonDocument::Compact));
}

}  // namespace zorvel
