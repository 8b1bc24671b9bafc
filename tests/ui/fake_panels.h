// Panels and alerts that answer what the test says, and keep what they were asked.
#pragma once

#include <gtest/gtest.h>

#include <QStringList>

#include "ui/kit/panels.h"

namespace zorvel {

class FakeOpenPanel : public OpenPanel {
  public:
    QStringList chooseFiles(QWidget* /*parent*/) override { return answer; }
    QString chooseTextFile(QWidget* /*parent*/, const QString& /*title*/) override {
        return answer.value(0);
    }
    QString chooseTable(QWidget* /*parent*/) override { return answer.value(0); }
    QStringList answer;
};

class FakeSavePanel : public SavePanel {
  public:
    QString chooseProjectPath(QWidget* /*parent*/, const QString& suggestion) override {
        suggestions.append(suggestion);
        return answer;
    }
    QString chooseFile(QWidget* /*parent*/, const QString& /*title*/, const QString& suggestion,
                       const FileType& type) override {
        suggestions.append(suggestion);
        ending = type.ending;
        return answer;
    }
    QString answer;
    QStringList suggestions;
    QString ending;  // of the type asked for last
};

// Answers with the button of a title; a question that the test does not expect fails it.
class FakeAlerts : public Alerts {
  public:
    int ask(QWidget* /*parent*/, const Question& question) override {
        asked.append(question.text);
        const auto place = static_cast<int>(question.buttons.indexOf(answers.value(0)));
        EXPECT_GE(place, 0) << question.text.toStdString();
        if (!answers.isEmpty()) answers.removeFirst();
        return place < 0 ? static_cast<int>(question.buttons.size()) - 1 : place;
    }
    // What is likely, unless the test says otherwise.
    int choose(QWidget* /*parent*/, const Choice& choice) override {
        choices.append(choice);
        return chosen.isEmpty() ? choice.preselected : chosen.takeFirst();
    }
    void warn(QWidget* /*parent*/, const QString& text, const QString& informative) override {
        warnings.append(text + ": " + informative);
    }
    QStringList answers;
    QStringList asked;
    QList<int> chosen;
    QList<Choice> choices;
    QStringList warnings;
};

}  // namespace zorvel
