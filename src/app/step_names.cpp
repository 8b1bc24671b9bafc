#include "app/step_names.h"

#include <QCoreApplication>

namespace zorvel {

namespace {

// For the tools that gather texts to be translated.
[[maybe_unused]] constexpr const char* stepNames[] = {
    QT_TRANSLATE_NOOP("UndoSteps", "Add Census"),
    QT_TRANSLATE_NOOP("UndoSteps", "Add Species"),
    QT_TRANSLATE_NOOP("UndoSteps", "Change Abundance"),
    QT_TRANSLATE_NOOP("UndoSteps", "Change Date"),
    QT_TRANSLATE_NOOP("UndoSteps", "Change Latitude"),
    QT_TRANSLATE_NOOP("UndoSteps", "Change Longitude"),
    QT_TRANSLATE_NOOP("UndoSteps", "Change Notes"),
    QT_TRANSLATE_NOOP("UndoSteps", "Cut"),
    QT_TRANSLATE_NOOP("UndoSteps", "Delete Census"),
    QT_TRANSLATE_NOOP("UndoSteps", "Delete Censuses"),
    QT_TRANSLATE_NOOP("UndoSteps", "Delete Species"),
    QT_TRANSLATE_NOOP("UndoSteps", "Import"),
    QT_TRANSLATE_NOOP("UndoSteps", "Import Abundance List"),
    QT_TRANSLATE_NOOP("UndoSteps", "Import Census"),
    QT_TRANSLATE_NOOP("UndoSteps", "Import Census Matrix"),
    QT_TRANSLATE_NOOP("UndoSteps", "Import Phone-App File"),
    QT_TRANSLATE_NOOP("UndoSteps", "Include Species"),
    QT_TRANSLATE_NOOP("UndoSteps", "Leave Out Species"),
    QT_TRANSLATE_NOOP("UndoSteps", "Paste"),
    QT_TRANSLATE_NOOP("UndoSteps", "Rename Census"),
    QT_TRANSLATE_NOOP("UndoSteps", "Rename Species"),
    QT_TRANSLATE_NOOP("UndoSteps", "Revert"),
};

}  // namespace

QString translatedStepName(const std::string& name) {
    return QCoreApplication::translate("UndoSteps", name.c_str());
}

}  // namespace zorvel
