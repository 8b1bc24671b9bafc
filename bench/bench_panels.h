// Panels for windows that are only measured: nobody answers.
#pragma once

#include "ui/kit/panels.h"

namespace zorvel {

class NoAlerts : public Alerts {
  public:
    int ask(QWidget* /*parent*/, const Question& /*question*/) override { return 0; }
    int choose(QWidget* /*parent*/, const Choice& choice) override { return choice.preselected; }
    void warn(QWidget* /*parent*/, const QString& /*text*/, const QString& /*more*/) override {}
};

class NoOpenPanel : public OpenPanel {
  public:
    QStringList chooseFiles(QWidget* /*parent*/) override { return {}; }
    QString chooseTextFile(QWidget* /*parent*/, const QString& /*title*/) override { return {}; }
    QString chooseTable(QWidget* /*parent*/) override { return {}; }
};

class NoSavePanel : public SavePanel {
  public:
    QString chooseProjectPath(QWidget* /*parent*/, const QString& /*suggestion*/) override {
        return {};
    }
    QString chooseFile(QWidget* /*parent*/, const QString& /*title*/, const QString& /*suggestion*/,
                       const FileType& /*type*/) override {
        return {};
    }
};

struct BenchPanels {
    Panels all() { return {open, save, alerts}; }

    NoOpenPanel open;
    NoSavePanel save;
    NoAlerts alerts;
};

}  // namespace zorvel
