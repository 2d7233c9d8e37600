#include "fieldsim/FieldBsap.h"

#include <algorithm>

#include "core/Text.h"
#include "fieldsim/GasHistory.h"

namespace fieldsim {

namespace {

bool Contains(const std::string& text, std::string_view word) {
    return core::UpperText(text).find(core::UpperText(word)) != std::string::npos;
}

// Every kind of record occurs in a station's lists: plain, alarm, system and others.
int AnalogTypeCode(const Signal& signal) {
    if (Contains(signal.description, "RTU Time") || Contains(signal.description, "System")) {
        return 50;
    }
    if (Contains(signal.description, "Limit") || Contains(signal.description, "Alarm")) {
        return 6;
    }
    return signal.position % 13 == 0 ? 9 : 2;
}

int LogicalTypeCode(const Signal& signal, bool teleCorrector) {
    if (Contains(signal.description, "Alarm")) {
        return 4;
    }
    if (teleCorrector && signal.position % 5 == 0) {
        return 32;
    }
    return signal.position % 7 == 0 ? 68 : 0;
}

std::shared_ptr<SignalList> Live(std::vector<Signal> signals, const Behaviour& behaviour) {
    return std::make_shared<SignalList>(std::move(signals), behaviour);
}

// What the models add to a stream's list numbers by its metering method.
int MethodStep(const core::Station& station, int streamno) {
    if (!station.isMultiStream) {
        return 0;
    }
    const std::string method = station.ModelText(streamno);
    return method == "AGA7" ? 2 : method == "AGA9" ? 4 : method == "AGA11" ? 6 : 0;
}

void AddLists(Field::Served& served, SignalLists& lists, StationMap map, int streamno, const Behaviour& behaviour) {
    for (Signal& signal : map.analogs) {
        signal.typecode = AnalogTypeCode(signal);
    }
    for (Signal& signal : map.logicals) {
        signal.typecode = LogicalTypeCode(signal, served.station.isTeleCorrector);
    }
    const auto analogs = Live(std::move(map.analogs), behaviour);
    const auto logicals = Live(std::move(map.logicals), behaviour);
    lists[AnalogList(served.station, streamno)] = analogs;
    lists[LogicalList(served.station, streamno)] = logicals;
    served.values[streamno] = {analogs, logicals};
}

// The lists besides those of the streams: the program and the transmitters.
void AddNamedLists(Field::Served& served, SignalLists& lists, const FieldOptions& options) {
    const std::int64_t locationID = served.station.locationID;
    served.transmitters = std::make_shared<Transmitters>();
    lists[kTransmitterList] = served.transmitters->List();
    lists[kProgramList] = MakeProgram(options.seed * 31U + static_cast<std::uint32_t>(locationID));
    if (const auto change = options.programs.find(locationID); change != options.programs.end()) {
        change->second(lists);
    }
    if (const auto manner = options.transmitters.find(locationID); manner != options.transmitters.end()) {
        manner->second(*served.transmitters);
    }
    served.values[1].push_back(served.transmitters->List());
    if (const auto program = lists.find(kProgramList); program != lists.end()) {
        served.program = program->second;
        served.values[1].push_back(served.program);
    }
}

}  // namespace

std::uint32_t AnswerMs(const core::Station& station) {
    return static_cast<std::uint32_t>(std::min(50, station.commtimeout / 4));
}

std::unique_ptr<BsapStation> MakeBsap(Field::Served& served, core::Database& dbconn, const FieldOptions& options,
                                      const std::function<Behaviour(int streamno)>& behaviour) {
    const core::Station& station = served.station;
    SignalLists lists;
    StationHistory history;
    for (int streamno = 1; streamno <= station.No_Stream; ++streamno) {
        AddLists(served, lists, LoadMap(dbconn, station.locationID, streamno), streamno, behaviour(streamno));
        AddGasArchives(history, station, streamno, *served.values[streamno].front(), behaviour(streamno),
                       options.contractHour);
    }
    AddNamedLists(served, lists, options);
    history.audit.before = [first = behaviour(1)](const core::DateTime& now) { return GasEvents(first, now); };
    if (const auto other = options.histories.find(station.locationID); other != options.histories.end()) {
        other->second(history);
    }
    BsapOptions bsap = options.bsapCountsForItself ? BsapOptions::CountsForItself() : BsapOptions{};
    bsap.seed = options.seed * 31U + static_cast<std::uint32_t>(station.locationID);
    bsap.shortLayout = station.isCW;
    bsap.answers = options.answers;
    bsap.answerMs = AnswerMs(station);
    if (options.silent.count(station.locationID) != 0) {
        bsap.silentLists.insert(AnalogList(station, 1));
    }
    auto made = std::make_unique<BsapStation>(station.slaveaddress, std::move(lists), std::move(bsap));
    made->History() = std::move(history);
    made->WhenTaken([transmitters = served.transmitters](const Write& write) {
        if (write.list == kTransmitterList) {
            transmitters->Taken(write);
        }
    });
    return made;
}

int AnalogList(const core::Station& station, int streamno) {
    return streamno * 10 + 44 + MethodStep(station, streamno);
}

int LogicalList(const core::Station& station, int streamno) {
    return AnalogList(station, streamno) + 1;
}

}  // namespace fieldsim
