#pragma once

#include <array>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "core/Station.h"
#include "fieldsim/Signals.h"

namespace fieldsim {

// An archive file of a Modbus station. It has no message of its own: it is shown through a window of registers. The
// pointer register reads as the number of the newest record; records count from 1, the oldest. The number of a record
// is written into the index register, and from the data register on the window then holds that record and the three
// before it, in the station's order: with index x the records x - 3, x - 2, x - 1, x, and with x below 4 the records
// 1 to x. What is left of the window is 0, as all of it is for an index that is no record.
//
// So whoever asks with n, n - 4, n - 8, ... and takes the smaller of 4 and the index from each window gets every record
// once.
struct ModbusArchiveFile {
    std::string name;  // "Hourly"
    int pointer = 0;   // first registers of floats, counted from 1: they go over the line less 1
    int index = 0;
    int data = 0;
    int floats = 0;                                         // of a record
    std::function<int(const core::DateTime& at)> newest{};  // the number of the newest record at a local time
    std::function<double(int record, int offset)> value{};  // a float of a record, its offset counted from 1
};

// The registers of these files as signals, to stand beside those of a station.
std::shared_ptr<SignalList> MakeArchiveWindows(std::vector<ModbusArchiveFile> files, bool floatInOneRegister);

// What a station of this model keeps: `numbers` are the six numbers that its model has in modbus_para. The files hold
// the last 40 days and the last 72 hours when they are looked at for the first time, and grow from then on. A record
// has the values that the station's live signals had at the full hour, the day's at `contractHour`, and its date and
// hour. Empty for a model that shows none.
std::vector<ModbusArchiveFile> StationArchive(const core::Station& station, const std::array<int, 6>& numbers,
                                              const Behaviour& behaviour, int contractHour);

}  // namespace fieldsim
