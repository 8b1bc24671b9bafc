// The options of the window for tables: where the censuses are and where the table begins, and
// behind "More" the form of the text, the marks of numbers and the rules for special cells. It
// shows a reading, and reports each change as a correction. Main thread.
#pragma once

#include <QWidget>
#include <functional>
#include <vector>

#include "tables/reading.h"
#include "ui/tables/table_corrections.h"

class QCheckBox;
class QComboBox;
class QGridLayout;
class QLabel;
class QPushButton;
class QSpinBox;

namespace zorvel {

class TableOptions : public QWidget {
    Q_OBJECT
  public:
    explicit TableOptions(QWidget* parent = nullptr);

    // isText: not a sheet, which has no separator and no encoding.
    void showReading(const TableReading& reading, bool isText);

  signals:
    void corrected(const zorvel::TableCorrection& correction);

  private:
    // A list of which one value holds.
    struct List {
        QLabel* label;
        QComboBox* box;
        bool isOfText;
        std::vector<int> values;
        std::function<int(const TableReading&)> get;
    };
    // places: title and value of each item. set: the correction that the choice of a value makes.
    struct Item {
        QString title;
        int value;
    };
    void addList(QGridLayout& grid, int place, const QString& title, const char* name,
                 const std::vector<Item>& items, std::function<int(const TableReading&)> get,
                 std::function<void(TableCorrections&, int)> set);
    void addMarks(QGridLayout& grid);
    void addRules(QGridLayout& grid);
    QSpinBox* addNumber(const char* name, int least, int most,
                        std::function<void(TableCorrections&, std::size_t)> set);

    std::vector<List> lists_;
    QSpinBox* firstRow_;
    QSpinBox* headerRows_;
    QPushButton* more_;
    QWidget* rules_;
    QCheckBox* presence_;
};

}  // namespace zorvel
