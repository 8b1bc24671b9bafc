#include "ui/tables/table_corrections.h"

#include <QCryptographicHash>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QJsonValue>
#include <type_traits>

#include "platform/settings.h"
#include "tables/rule_names.h"

namespace zorvel {

namespace {

const char keptKey[] = "tables/corrections";
constexpr qsizetype mostKept = 50;  // headers

// Calls visit(key, value, largest number) for each value that is a number or a character.
template <class Corrections, class Visit>
void forEachNumber(Corrections& corrections, const Visit& visit) {
    constexpr int lastCharacter = 127;
    constexpr int lastRow = 1000;
    visit("separator", corrections.choices.separator, lastCharacter);
    visit("firstRow", corrections.choices.firstRow, lastRow);
    visit("headerRows", corrections.choices.headerRows, lastRow);
    visit("decimalMark", corrections.decimalMark, lastCharacter);
    visit("thousandsMark", corrections.thousandsMark, lastCharacter);
    visit("presence", corrections.presence, 1);
}

// Calls visit(key, value, names) for each value that has a name.
template <class Corrections, class Visit>
void forEachRule(Corrections& corrections, const Visit& visit) {
    visit("encoding", corrections.choices.encoding, encodingNames);
    visit("layout", corrections.choices.layout, layoutNames);
    visit("dateOrder", corrections.dateOrder, dateOrderNames);
    visit("missing", corrections.missing, missingRuleNames);
    visit("fractions", corrections.fractions, fractionRuleNames);
    visit("sameSpecies", corrections.sameSpecies, sameRuleNames);
    visit("sameCensus", corrections.sameCensus, sameRuleNames);
    visit("stages", corrections.sameStages, sameRuleNames);
    visit("unnamed", corrections.unnamed, unnamedRuleNames);
}

template <class Names>
auto namedIn(const QJsonValue& name, const Names& names) {
    return ruleNamed(names, name.toString().toStdString());
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
    forEachNumber(corrections, [&](const char* key, const auto& value, int /*most*/) {
        if (value) object[QLatin1String(key)] = static_cast<int>(*value);
    });
    forEachRule(corrections, [&](const char* key, const auto& value, const auto& names) {
        const QString name = value ? ruleName(names, *value) : "";
        if (!name.isEmpty()) object[QLatin1String(key)] = name;
    });
    QJsonObject roles;
    for (const auto& [column, role] : corrections.roles) {
        roles[QString::number(column)] = ruleName(roleNames, role);
    }
    if (!roles.isEmpty()) object["roles"] = roles;
    QJsonArray faults;
    for (const CountFault fault : corrections.takenAsZero) {
        faults.append(ruleName(countFaultNames, fault));
    }
    if (!faults.isEmpty()) object["zero"] = faults;
    return QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact));
}

TableCorrections readCorrections(const QString& text) {
    const QJsonObject object = QJsonDocument::fromJson(text.toUtf8()).object();
    TableCorrections corrections;
    forEachNumber(corrections, [&](const char* key, auto& value, int most) {
        const int number = object[QLatin1String(key)].toInt(-1);
        if (number < 0 || number > most) return;
        value = static_cast<typename std::decay_t<decltype(value)>::value_type>(number);
    });
    forEachRule(corrections, [&](const char* key, auto& value, const auto& names) {
        value = namedIn(object[QLatin1String(key)], names);
    });
    const QJsonObject roles = object["roles"].toObject();
    for (auto role = roles.begin(); role != roles.end(); ++role) {
        constexpr unsigned mostColumns = 16384;
        bool isNumber = false;
        const unsigned column = role.key().toUInt(&isNumber);
        const auto known = namedIn(role.value(), roleNames);
        if (isNumber && column < mostColumns && known) corrections.roles[column] = *known;
    }
    for (const auto& fault : object["zero"].toArray()) {
        const auto known = namedIn(fault, countFaultNames);
        if (known) corrections.takenAsZero.push_back(*known);
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
