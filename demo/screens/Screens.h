#pragma once

#include <functional>
#include <string>
#include <vector>

#include "demo/screens/Stage.h"

namespace demo {

// One screen of the program as an operator sees it at work.
struct Screen {
    std::string name;  // of its picture
    // Brings it to the front and returns what is to be looked at: the shell, or a window of its own.
    std::function<QWidget*(Stage&)> show;
    // Set: what is shown is alive only inside this, which calls `look` once.
    std::function<void(Stage&, const std::function<void()>& look)> alive{};
};

// All screens, each in the states that look different.
const std::vector<Screen>& Screens();

// Those of a session and of the register editor, which stand among them.
std::vector<Screen> SessionScreens();

// Those of the downloads of archives.
std::vector<Screen> ArchiveScreens();

// Those of the lists and the search of signals.
std::vector<Screen> SignalScreens();

// Those of the calibration.
std::vector<Screen> CalibrationScreens();

// That of the stored archive.
std::vector<Screen> HistoryScreens();

// Those of the lists before and after a change.
std::vector<Screen> VerificationScreens();

}  // namespace demo
