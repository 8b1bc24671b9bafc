#include "ui/tables/table_texts.h"

#include "ui/kit/look.h"

namespace zorvel {

std::vector<ColumnRole> rolesIn(TableLayout layout) {
    using enum ColumnRole;
    switch (layout) {
        case TableLayout::censusRows:
            return {count, census, latitude, longitude, date,  year,
                    month, day,    notes,    stage,     total, ignored};
        case TableLayout::speciesRows:
            return {count, species, genus, total, ignored};
        case TableLayout::records:
            return {census, species, genus, count, latitude, longitude, date,
                    year,   month,   day,   notes, status,   included,  ignored};
    }
    return {};
}

QString roleCaption(TableLayout layout, ColumnRole role) {
    switch (role) {
        case ColumnRole::count:
            return layout == TableLayout::censusRows    ? "Species"
                   : layout == TableLayout::speciesRows ? "Census"
                                                        : "Count";
        case ColumnRole::census:
            return "Census name";
        case ColumnRole::genus:
            return "Genus";
        case ColumnRole::species:
            return "Species name";
        case ColumnRole::latitude:
            return "Latitude";
        case ColumnRole::longitude:
            return "Longitude";
        case ColumnRole::date:
            return "Date";
        case ColumnRole::year:
            return "Year";
        case ColumnRole::month:
            return "Month";
        case ColumnRole::day:
            return "Day";
        case ColumnRole::notes:
            return "Notes";
        case ColumnRole::status:
            return "Present or absent";
        case ColumnRole::included:
            return "Included in metrics";
        case ColumnRole::stage:
            return "Sex or stage, added";
        case ColumnRole::total:
            return "Total";
        case ColumnRole::ignored:
            return "Ignored";
    }
    return {};
}

QColor roleColor(ColumnRole role, const QPalette& palette) {
    const bool dark = schemeOf(palette) == ColorScheme::dark;
    const LookColors& look = lookColors(palette);
    switch (role) {
        case ColumnRole::count:
            return look.accent;
        case ColumnRole::census:
            return dark ? "#6aa9e9" : "#2a6db0";
        case ColumnRole::genus:
        case ColumnRole::species:
            return dark ? "#b594e6" : "#7449b8";
        case ColumnRole::latitude:
        case ColumnRole::longitude:
            return dark ? "#d9a05b" : "#9c5f14";
        case ColumnRole::date:
        case ColumnRole::year:
        case ColumnRole::month:
        case ColumnRole::day:
            return dark ? "#5dc0c4" : "#177a80";
        case ColumnRole::notes:
        case ColumnRole::status:
        case ColumnRole::included:
            return dark ? "#c3b04c" : "#7a6a08";
        case ColumnRole::stage:
        case ColumnRole::total:
        case ColumnRole::ignored:
            break;
    }
    return look.border;
}

QColor roleTint(ColumnRole role, const QPalette& palette) {
    const bool isRead =
        role != ColumnRole::ignored && role != ColumnRole::total && role != ColumnRole::stage;
    QColor tint = roleColor(role, palette);
    tint.setAlphaF(isRead ? 0.10F : 0.05F);
    return tint;
}

QString zeroCaption(CountFault fault) {
    switch (fault) {
        case CountFault::fraction:
            return "Take All Fractions as &0";
        case CountFault::negative:
            return "Take All Below Zero as &0";
        case CountFault::tooLarge:
            return "Take All Too Large as &0";
        case CountFault::notANumber:
            return "Take All Such Texts as &0";
    }
    return {};
}

}  // namespace zorvel
