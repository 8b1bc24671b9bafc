// Keys as a person presses them: they reach the window, and go from there to whatever has the
// focus, shortcuts first. Nothing else happens between two of them.
#pragma once

#include <QTest>
#include <QWindow>

#include "ui/main/table_cells.h"
#include "ui/window_fixture.h"

namespace zorvel {

class KeyPressTest : public WindowTest {
  protected:
    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
        QTest::keyClick(window->windowHandle(), key, modifiers);
    }
    void press(QKeySequence::StandardKey key) {
        const QKeyCombination keys = QKeySequence(key)[0];
        press(keys.key(), keys.keyboardModifiers());
    }
    void typeText(const char* text) {
        for (const char* c = text; *c != '\0'; ++c) QTest::keyClick(window->windowHandle(), *c);
    }
    // The field that has the focus; null where none has.
    TableTextField* field() { return qobject_cast<TableTextField*>(QApplication::focusWidget()); }
    // Row and column of the cell that is edited; -1, -1 where none is.
    std::pair<int, int> editedCell(RecordTableView& table) {
        if (field() == nullptr || field() != table.openEditor()) return {-1, -1};
        return {table.currentIndex().row(), table.currentIndex().column()};
    }
    Census census(std::size_t place) { return context().censuses().at(place); }
    std::string taxonName(std::size_t place) {
        const std::optional<SharedText> name = census(0).taxa().at(place).name();
        return name ? name->str() : std::string();
    }
    std::vector<std::string> records() {
        std::vector<std::string> lines;
        for (const Census& each : context().censuses()) {
            lines.push_back(each.name() ? each.name()->str() : "-");
            for (const Zorvel& taxon : each.taxa()) {
                lines.push_back((taxon.name() ? taxon.name()->str() : "-") + "," +
                                std::to_string(taxon.abundance()) +
                                (taxon.include() ? "" : ",out"));
            }
        }
        return lines;
    }
};

}  // namespace zorvel
