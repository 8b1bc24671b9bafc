// What the help calls a menu command is one, and its table of keys is that of the menus.
#include <gtest/gtest.h>

#include <QAction>
#include <QDir>
#include <QFile>
#include <QMenu>
#include <QMenuBar>
#include <QXmlStreamReader>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "ui/window_fixture.h"

namespace zorvel {
namespace {

struct Command {
    std::string path;  // "File > Open..."
    std::set<std::string> keys;
};

std::string titleOf(const QAction& action) {
    return action.text().remove('&').toStdString();
}

void addCommands(const QList<QAction*>& actions, const std::string& above,
                 std::vector<Command>& commands) {
    for (const QAction* action : actions) {
        if (action->isSeparator()) continue;
        Command command{above + titleOf(*action), {}};
        for (const QKeySequence& key : action->shortcuts()) {
            command.keys.insert(key.toString(QKeySequence::PortableText).toStdString());
        }
        commands.push_back(command);
        if (action->menu() != nullptr) {
            addCommands(action->menu()->actions(), command.path + " > ", commands);
        }
    }
}

// The texts of the elements that wanted takes, page by page.
template <class Wanted>
std::multimap<std::string, std::string> textsOfPages(Wanted wanted) {
    std::multimap<std::string, std::string> texts;
    const QDir folder(ZORVEL_HELP_FOLDER);
    for (const QString& page : folder.entryList({"*.html"})) {
        QFile file(folder.filePath(page));
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        QXmlStreamReader reader(&file);
        while (!reader.atEnd()) {
            if (reader.readNext() != QXmlStreamReader::StartElement || !wanted(reader)) continue;
            const QString text = reader.readElementText(QXmlStreamReader::IncludeChildElements);
            texts.emplace(page.toStdString(), text.simplified().toStdString());
        }
        EXPECT_FALSE(reader.hasError()) << page.toStdString();
    }
    return texts;
}

// "Ctrl+Shift+Z or Ctrl+Y".
std::set<std::string> keysIn(const std::string& cell) {
    std::set<std::string> keys;
    for (const QString& key : QString::fromStdString(cell).split(" or ")) {
        keys.insert(key.toStdString());
    }
    return keys;
}

class HelpOnMenus : public WindowTest {
  protected:
    std::vector<Command> commands() {
        std::vector<Command> all;
        addCommands(window->menuBar()->actions(), "", all);
        return all;
    }
};

TEST_F(HelpOnMenus, EveryCommandThatThePagesNameIsThere) {
    std::set<std::string> paths;
    for (const Command& command : commands()) paths.insert(command.path);
    const auto named = textsOfPages([](const QXmlStreamReader& reader) {
        return reader.attributes().value("class") == QLatin1String("menu");
    });
    EXPECT_GT(named.size(), 20U);
    for (const auto& [page, path] : named) {
        EXPECT_TRUE(paths.contains(path)) << path << ", in " << page;
    }
}

TEST_F(HelpOnMenus, TheTableOfKeysIsThatOfTheMenus) {
    std::map<std::string, std::set<std::string>> expected;
    for (const Command& command : commands()) {
        if (!command.keys.empty()) expected[command.path] = command.keys;
    }
    std::map<std::string, std::set<std::string>> shown;
    std::string path;
    for (const auto& [page, cell] : textsOfPages([](const QXmlStreamReader& reader) {
             const auto kind = reader.attributes().value("class");
             return kind == QLatin1String("command") || kind == QLatin1String("keys");
         })) {
        if (path.empty()) {
            path = cell;
        } else {
            shown[path] = keysIn(cell);
            path.clear();
        }
    }
    // The key of closing is the desktop's, and what stands for one here has another.
    EXPECT_EQ(shown.erase("File > Close"), 1U);
    EXPECT_EQ(expected.erase("File > Close"), 1U);
    EXPECT_EQ(shown, expected);
}

}  // namespace
}  // namespace zorvel
