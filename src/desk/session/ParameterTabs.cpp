#include "desk/session/ParameterTabs.h"

#include <QPushButton>
#include <QTabBar>
#include <QVBoxLayout>

#include "desk/kit/Grid.h"

namespace desk {

namespace {

enum Tab : int {
    Metering,
    Aga8,
    Gc,
    Totals,
    Health,
    Alarm,
    Io,
    Nomination,
    Pid,
    Drs,
    Aga5,
    Curve,
    Radio,
    Modem,
    Keypad,
    Constants,
    Quantum
};

struct TabContent {
    const char* caption;
    QStringList grids;
};

// In the order of the tabs. The error curve and the radio share a grid, which stands on the tab of the station's meter.
const std::vector<TabContent>& Contents() {
    static const std::vector<TabContent> contents = {
        {"AGA3", {"aga3grid", "aga7grid"}},
        {"AGA8", {"aga8Detail", "aga8gridGross", "FPVGrid"}},
        {"GC", {"gcgrid"}},
        {"Totals", {"totrendgrid"}},
        {"Health", {"healthgrid"}},
        {"Alarm", {"alarmgrid"}},
        {"I/O", {"IOGrid"}},
        {"Nomination", {"nomgrid"}},
        {"PID", {"controlgrid"}},
        {"DRS", {"DRSgrid"}},
        {"AGA5", {"aga5grid"}},
        {"Curve", {"radiogrid"}},
        {"Radio", {}},
        {"Modem", {"modemgrid"}},
        {"Keypad", {"keypadgrid"}},
        {"Constants", {"fcgrid"}},
        {"Quantum", {"floatgrid"}},
    };
    return contents;
}

}  // namespace

ParameterTabs::ParameterTabs(QWidget* parent) : QTabWidget(parent) {
    setElideMode(Qt::ElideNone);
    for (const TabContent& content : Contents()) {
        auto* page = new QWidget(this);
        auto* layout = new QVBoxLayout(page);
        layout->setContentsMargins(8, 8, 8, 8);
        layout->setSpacing(8);
        for (const QString& name : content.grids) {
            auto* grid = new Grid(page);
            grid->setObjectName(name);
            layout->addWidget(grid);
            all_.push_back(grid);
            connect(grid, &Grid::RowChosen, this, [this, grid](int row) { GridRowChosen(grid, row); });
        }
        addTab(page, content.caption);
    }
    cmdgc_ = new QPushButton("Gas Co&mposition", widget(Aga8));
    cmdgc_->setObjectName("cmdgc");
    cmdgc_->setAutoDefault(false);
    widget(Aga8)->layout()->addWidget(cmdgc_);
    widget(Aga8)->layout()->setAlignment(cmdgc_, Qt::AlignRight);
    for (std::size_t group = 0; group < session::groupCount; ++group) {
        const std::string_view name = session::parameterGroups[group].grid;
        for (Grid* grid : all_) {
            if (grid->objectName() == QLatin1String(name.data(), static_cast<int>(name.size()))) {
                grids_.emplace(group, grid);
            }
        }
    }
    Arrange({});
}

void ParameterTabs::Arrange(const TabChoices& choices) {
    choices_ = choices;
    setTabText(Metering, choices.isAga3 ? "AGA3" : "AGA7");
    setTabText(Io, choices.isCW ? "I/O Slot-1" : "I/O");
    setTabText(Nomination, choices.isCW ? "I/O Slot-2" : "Nomination");
    const auto show = [this](const char* grid, bool shown) { findChild<Grid*>(grid)->setVisible(shown); };
    show("aga3grid", choices.isAga3);
    show("aga7grid", !choices.isAga3);
    const bool gross = choices.aga8_fpv && choices.Gross_Detail;
    show("aga8gridGross", gross);
    show("aga8Detail", choices.aga8_fpv && !gross);
    show("FPVGrid", !choices.aga8_fpv);
    cmdgc_->setVisible(gross);
    widget(choices.isAga3 ? Radio : Curve)->layout()->addWidget(findChild<Grid*>("radiogrid"));
    ShowTabs();
    setCurrentIndex(choices.quantum ? Quantum : choices.drs == 1 ? Drs : Metering);
}

// A tab that is hidden while it is in front hands over to a neighbour, so what is shown is shown first.
void ParameterTabs::ShowTabs() {
    std::vector<int> hidden;
    for (int tab = 0; tab < count(); ++tab) {
        bool shown = false;
        if (choices_.quantum || choices_.drs == 1) {
            shown = tab == (choices_.quantum ? Quantum : Drs);
        } else if (tab <= Drs) {
            shown = tab != Drs || choices_.drs == 2;
        } else {
            shown = tab != Quantum && (tab != Modem || choices_.superUser) && HasRows(tab);
        }
        if (shown) {
            setTabVisible(tab, true);
        } else {
            hidden.push_back(tab);
        }
    }
    for (const int tab : hidden) {
        setTabVisible(tab, false);
    }
}

bool ParameterTabs::HasRows(int tab) const {
    const auto grids = widget(tab)->findChildren<Grid*>();
    return std::any_of(grids.begin(), grids.end(), [](const Grid* grid) { return grid->Rows() > 0; });
}

void ParameterTabs::FormatString(const QString& format) {
    for (Grid* grid : all_) {
        grid->FormatString(format);
    }
    count_.fill(0);
    ShowTabs();
}

void ParameterTabs::Show(std::size_t group, const std::vector<QStringList>& rows) {
    const auto found = grids_.find(group);
    if (found == grids_.end()) {
        return;
    }
    Grid& grid = *found->second;
    const int first = FirstRow(group);
    const int behind = first + static_cast<int>(count_[group]);
    std::vector<QStringList> all;
    const auto keep = [&](int from, int to) {
        for (int row = from; row < to; ++row) {
            QStringList cells;
            for (int column = 0; column < grid.Columns(); ++column) {
                cells.append(grid.TextMatrix(row, column));
            }
            all.push_back(cells);
        }
    };
    keep(0, first);
    all.insert(all.end(), rows.begin(), rows.end());
    keep(behind, grid.Rows());
    const int selected = std::max(grid.Row(), 0);
    grid.Clear();
    grid.AddItems(all);
    grid.SelectRow(std::min(selected, grid.Rows() - 1));
    count_[group] = rows.size();
    ShowTabs();
}

void ParameterTabs::Cell(std::size_t group, std::size_t row, int column, const QString& text) {
    if (const int place = GridRow(group, row); place >= 0) {
        GridOf(group).TextMatrix(place, column, text);
    }
}

QString ParameterTabs::Cell(std::size_t group, std::size_t row, int column) const {
    const int place = GridRow(group, row);
    return place < 0 ? QString() : GridOf(group).TextMatrix(place, column);
}

int ParameterTabs::GridRow(std::size_t group, std::size_t row) const {
    return row < count_.at(group) ? FirstRow(group) + static_cast<int>(row) : -1;
}

// Behind the rows of the groups before it in the same grid.
int ParameterTabs::FirstRow(std::size_t group) const {
    std::size_t first = 0;
    for (std::size_t before = 0; before < group; ++before) {
        if (session::parameterGroups[before].grid == session::parameterGroups[group].grid) {
            first += count_[before];
        }
    }
    return static_cast<int>(first);
}

void ParameterTabs::GridRowChosen(const Grid* grid, int row) {
    for (const auto& [group, its] : grids_) {
        const int place = row - FirstRow(group);
        if (its == grid && place >= 0 && place < static_cast<int>(count_[group])) {
            Q_EMIT RowChosen(group, static_cast<std::size_t>(place));
            return;
        }
    }
}

void ParameterTabs::BringForward(std::size_t group) {
    for (int tab = 0; tab < count(); ++tab) {
        if (widget(tab)->isAncestorOf(&GridOf(group))) {
            setCurrentIndex(tab);
        }
    }
}

Grid* ParameterTabs::GridInFront() const {
    for (Grid* grid : currentWidget()->findChildren<Grid*>()) {
        if (!grid->isHidden()) {
            return grid;
        }
    }
    return nullptr;
}

}  // namespace desk
