#include "fieldsim/ModbusArchive.h"

#include <algorithm>
#include <array>
#include <optional>
#include <utility>

namespace fieldsim {

namespace {

constexpr int kWindow = 4;  // records
constexpr std::int64_t kHourSeconds = 3600;
constexpr std::int64_t kDaySeconds = 24 * kHourSeconds;
constexpr int kDays = 40;
constexpr int kHours = 72;

// What the floats of a record are: live signals, then the date and the hour.
struct Live {
    const char* description;
    const char* unit;
};
const Live kDp{"Differential Pressure", "mmWC"};
const Live kPressure{"Flowing Pressure", "kg/cm2"};
const Live kTemperature{"Flowing Temperature", "degC"};
const Live kFlow{"Flowrate", "SCMH"};
const Live kUncorrectedFlow{"UnCorr.Flowrate", "ACMH"};
const Live kTotal{"Total Volume Accumulated", "SCM"};
const Live kThisHour{"Volume This Hour", "SCM"};
const Live kToday{"Volume Today", "SCM"};
const Live kYesterday{"Volume Yesterday", "SCM"};
const Live kUncorrectedTotal{"Total Un Volume Accumulated", "ACM"};
const Live kUncorrectedToday{"Uncorrected Volume Today", "ACM"};
const Live kUncorrectedYesterday{"Uncorrected Volume Yesterday", "ACM"};
const Live kEnergy{"Total Energy Accumulated", "GJ"};
const Live kEnergyHour{"Energy This Hour", "GJ"};
const Live kEnergyToday{"Energy Today", "GJ"};
const Live kEnergyYesterday{"Energy Yesterday", "GJ"};
const Live kBattery{"Main Battery Volt", "Vdc"};

struct Layout {
    std::vector<Live> values;
    bool dayFirst = false;  // day, month, year and hour follow, or year, month, day and hour

    int Floats() const { return static_cast<int>(values.size()) + 4; }
};

std::optional<Layout> LayoutOf(const core::Station& station, bool hourly) {
    if (station.isTeleCorrector) {
        return Layout{{kPressure, kTemperature, kFlow, kUncorrectedFlow, kTotal, kToday, kYesterday, kUncorrectedTotal,
                       kUncorrectedToday, kUncorrectedYesterday, kBattery},
                      true};
    }
    if (!station.isCW) {
        return Layout{{kDp, kPressure, kTemperature, kFlow, kTotal, kToday, kYesterday, kBattery}};
    }
    const std::string method = station.ModelText(1);
    if (method != "AGA3" && method != "AGA7") {
        return std::nullopt;
    }
    Layout layout{hourly ? std::vector<Live>{kDp, kPressure, kTemperature, kFlow, kTotal, kThisHour, kEnergy,
                                             kEnergyHour, kBattery}
                         : std::vector<Live>{kDp, kPressure, kTemperature, kFlow, kTotal, kToday, kYesterday, kEnergy,
                                             kEnergyToday, kEnergyYesterday}};
    if (method == "AGA7") {
        layout.values.erase(layout.values.begin());
    }
    return layout;
}

// When the records of a file were made: one a step, the newest at the last step before now. The first look lays down
// when the first of them was.
class Times {
  public:
    Times(int count, std::int64_t step, std::int64_t offset) : count_(count), step_(step), offset_(offset) {}

    int Newest(const core::DateTime& at) {
        const std::int64_t steps = (core::ToSeconds(at) - offset_) / step_;
        if (!first_) {
            first_ = steps - count_ + 1;
        }
        return static_cast<int>(std::max<std::int64_t>(steps - *first_ + 1, 0));
    }
    core::DateTime Of(int record) const {
        return core::FromSeconds((first_.value_or(0) + record - 1) * step_ + offset_);
    }

  private:
    int count_;
    std::int64_t step_;
    std::int64_t offset_;
    std::optional<std::int64_t> first_;
};

double Float(const Layout& layout, const Behaviour& behaviour, const core::DateTime& at, int offset) {
    const int values = static_cast<int>(layout.values.size());
    if (offset <= values) {
        const Live& live = layout.values[static_cast<std::size_t>(offset - 1)];
        return behaviour ? behaviour({0, live.description, live.unit}, at) : offset;
    }
    const std::array<int, 3> date =
        layout.dayFirst ? std::array<int, 3>{at.day, at.month, at.year} : std::array<int, 3>{at.year, at.month, at.day};
    return offset <= values + 3 ? date[static_cast<std::size_t>(offset - values - 1)] : at.hour;
}

// The record at a place of the window, from 0; 0 when none is there.
int RecordAt(int place, int index, int newest) {
    const int last = std::min(index, kWindow);
    return index > newest || place >= last ? 0 : index - last + 1 + place;
}

}  // namespace

std::shared_ptr<SignalList> MakeArchiveWindows(std::vector<ModbusArchiveFile> files, bool floatInOneRegister) {
    const int step = floatInOneRegister ? 1 : 2;
    std::vector<Signal> signals;
    for (const ModbusArchiveFile& file : files) {
        signals.push_back({file.pointer, file.name + " pointer", ""});
        signals.push_back({file.index, file.name + " index", ""});
        for (int i = 0; i < kWindow * file.floats; ++i) {
            signals.push_back({file.data + i * step, file.name + " record", ""});
        }
    }
    // What the window shows follows the index that was written, which is a value of the same list.
    const auto self = std::make_shared<const SignalList*>(nullptr);
    const auto behaviour = [self, step, files = std::move(files)](const Signal& signal, const core::DateTime& at) {
        for (const ModbusArchiveFile& file : files) {
            const int place = (signal.position - file.data) / step;
            if (signal.position == file.pointer) {
                return static_cast<double>(file.newest(at));
            }
            if (signal.position < file.data || place >= kWindow * file.floats) {
                continue;
            }
            const auto index = static_cast<int>((*self)->ValueAt(*(*self)->At(file.index), at));
            const int record = RecordAt(place / file.floats, index, file.newest(at));
            return record > 0 ? file.value(record, place % file.floats + 1) : 0.0;
        }
        return 0.0;
    };
    auto list = std::make_shared<SignalList>(std::move(signals), behaviour);
    *self = list.get();
    return list;
}

std::vector<ModbusArchiveFile> StationArchive(const core::Station& station, const std::array<int, 6>& numbers,
                                              const Behaviour& behaviour, int contractHour) {
    std::vector<ModbusArchiveFile> files;
    for (const bool hourly : {false, true}) {
        const auto layout = LayoutOf(station, hourly);
        if (!layout) {
            continue;
        }
        // A number N goes over the line as 2 * N - 1.
        const auto reg = [&](std::size_t daily) { return 2 * numbers[daily + (hourly ? 1 : 0)]; };
        const auto times = std::make_shared<Times>(hourly ? kHours : kDays, hourly ? kHourSeconds : kDaySeconds,
                                                   hourly ? 0 : contractHour * kHourSeconds);
        ModbusArchiveFile file;
        file.name = hourly ? "Hourly" : "Daily";
        file.pointer = reg(0);
        file.index = reg(2);
        file.data = reg(4);
        file.floats = layout->Floats();
        file.newest = [times](const core::DateTime& at) { return times->Newest(at); };
        file.value = [times, layout = *layout, behaviour](int record, int offset) {
            return Float(layout, behaviour, times->Of(record), offset);
        };
        files.push_back(std::move(file));
    }
    return files;
}

}  // namespace fieldsim
