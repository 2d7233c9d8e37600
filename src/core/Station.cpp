#include "core/Station.h"

#include <algorithm>
#include <string_view>

#include "core/Database.h"
#include "core/Text.h"

namespace core {

namespace {

template <std::size_t n>
bool AnyOf(const std::array<std::string_view, n>& names, const std::string& text) {
    return std::any_of(names.begin(), names.end(), [&](std::string_view name) { return SameText(name, text); });
}

// The port number is the last character of the port's name: "COM12" opens port 2. Operators number their ports 1 to 9.
int PortNumber(const std::string& comport) {
    return static_cast<int>(Val(comport.substr(comport.size() - 1)));
}

std::string DialCommand(Database& dbconn, const std::string& comtype) {
    const auto row = dbconn.First("select * from modem where comtype=?", {comtype});
    return row ? (*row)[1].Text() : "atx3dt";
}

constexpr int longestDelayMs = 60000;  // whatever a row says

int Whole(const Row& row, std::string_view column, int whenNull) {
    return row.IsNull(column) ? whenNull : static_cast<int>(std::clamp<std::int64_t>(row.Long(column), -1, 1 << 24));
}

}  // namespace

bool IsCwModel(const std::string& modelno) {
    static constexpr std::array<std::string_view, 9> models = {
        "CWEFM-AGA3", "CWEFM-AGA7",   "CWGFC-AGA3",        "CWGFC-AGA7",       "CWEFM-AGA9",
        "CWGFC-AGA9", "CWEPAC-AGA11", "CWEFM-MultiStream", "CWGFC-MultiStream"};
    return AnyOf(models, modelno);
}

bool IsMultiStreamModel(const std::string& modelno) {
    static constexpr std::array<std::string_view, 2> models = {"CWEFM-MultiStream", "CWGFC-MultiStream"};
    return AnyOf(models, modelno);
}

std::string Station::ProtocolText() const {
    return TextOf(protocol) + (protocol == Protocol::Modbus ? " " + TextOf(framing) : "");
}

std::string Station::ModelText(int streamno) const {
    static constexpr std::array<std::string_view, 4> methods = {"AGA3", "AGA7", "AGA9", "AGA11"};
    if (!isCW || streamno < 1 || streamno > 4) {
        return {};
    }
    const std::string& method = stream[static_cast<std::size_t>(streamno - 1)];
    return AnyOf(methods, method) ? UpperText(method) : std::string();
}

std::optional<Station> ReadStation(Database& dbconn, std::int64_t locationID) {
    const auto row = dbconn.First("select * from configData_master where locationId = ?", {locationID});
    if (!row) {
        return std::nullopt;
    }
    Station station;
    station.locationID = locationID;
    station.consumer = row->Text("consumer");
    station.modelno = row->Text("modelno");
    station.isCW = IsCwModel(station.modelno);
    station.isTeleCorrector = SameText(station.modelno, "TeleCorrector") || SameText(station.modelno, "TeleCorrector+");
    station.isMultiStream = IsMultiStreamModel(station.modelno);
    station.comtype = row->Text("comtype");
    station.dialprefix = DialCommand(dbconn, station.comtype);
    station.ip = Trim(row->Text("ip"));
    if (station.ip.empty()) {
        const std::string comport = Trim(row->Text("comport"));
        station.comport = comport.empty() ? 1 : PortNumber(comport);
        station.settings = Trim(row->Text("baudrate"));
        station.settings = station.settings.empty() ? "9600,N,8,1" : station.settings;
        station.phoneno = Trim(row->Text("phoneno"));
    } else {
        station.settings = "9600,n,8,1";
    }
    // What no protocol is named by is read as Modbus, what no framing is as RTU.
    const auto named = ProtocolOf(row->Text("protocol"));
    station.protocol = station.isCW ? Protocol::Bsap : named.value_or(Protocol::Modbus);
    station.framing = FramingOf(row->Text("mode")).value_or(Framing::Rtu);
    station.standardFraming = SameText(Trim(row->Text("framing")), "standard");
    station.slaveaddress = Whole(*row, "slaveaddress", 1);
    station.commtimeout = std::clamp(Whole(*row, "delaytime", 2000), 0, longestDelayMs);
    station.No_Stream = station.isMultiStream ? std::clamp(Whole(*row, "No_Stream", 1), 1, 4) : 1;
    for (std::size_t i = 0; i < station.stream.size(); ++i) {
        station.stream[i] = Trim(row->Text("stream" + std::to_string(i + 1)));
    }
    station.systemtype = row->Text("systemtype");
    station.voltlimit = row->Number("voltlimit");
    station.rtuBitsMode = row->Bool("rtubits");
    station.MB_CONFIG = row->Bool("MB_CONFIG");
    station.pacing = KindOf<Pacing>(pacingTexts, row->Text("pacing")).value_or(Pacing::Stated);
    station.wordOrder = KindOf<WordOrder>(wordOrderTexts, row->Text("wordorder")).value_or(WordOrder::HighFirst);
    return station;
}

std::optional<Station> ReadOnlineStation(Database& dbconn, std::int64_t locationID) {
    auto station = ReadStation(dbconn, locationID);
    if (station && SameText(station->modelno, "CW_Micro")) {
        station->isCW = true;
        station->protocol = Protocol::Bsap;
    }
    return station;
}

std::optional<ModelCounts> ReadModelCounts(Database& dbconn, const Station& station, int streamno) {
    const std::string model = station.isCW              ? station.ModelText(streamno)
                              : station.isTeleCorrector ? "TeleCorrector"
                                                        : "TeleFlow";
    const auto row = dbconn.First("select * from modbus_para where model=?", {model});
    if (!row) {
        return std::nullopt;
    }
    const auto count = [&](std::size_t column) {
        return static_cast<int>(std::clamp<std::int64_t>((*row)[column].Long(), 0, 65535));
    };
    ModelCounts counts;
    counts.floatcount = count(0);
    counts.boolcount = count(1);
    for (std::size_t i = 0; i < counts.archive.size(); ++i) {
        counts.archive[i] = count(i + 2);
    }
    return counts;
}

}  // namespace core
