#include "app/look_choice.h"

#include <QApplication>

#include "platform/settings.h"
#include "ui/kit/look.h"

namespace zorvel {

namespace {

const char lookKey[] = "look";

const char* nameOf(LookChoice::Choice choice) {
    return choice == LookChoice::light ? "light" : choice == LookChoice::dark ? "dark" : "desktop";
}

}  // namespace

LookChoice::LookChoice(QApplication& application) : application_(application) {
    const QString stored = setting(lookKey).toString();
    for (const Choice choice : {light, dark}) {
        if (stored == nameOf(choice)) choice_ = choice;
    }
    connect(&desktop_, &DesktopScheme::schemeDidChange, this, &LookChoice::apply);
    apply();
}

void LookChoice::choose(Choice choice) {
    if (choice == choice_) return;
    choice_ = choice;
    storeSetting(lookKey, nameOf(choice));
    apply();
    emit choiceDidChange();
}

void LookChoice::apply() {
    const ColorScheme scheme = choice_ == light  ? ColorScheme::light
                               : choice_ == dark ? ColorScheme::dark
                                                 : desktop_.scheme();
    applyLook(application_, scheme);
}

}  // namespace zorvel
