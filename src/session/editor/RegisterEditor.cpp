#include "session/editor/RegisterEditor.h"

#include <algorithm>
#include <map>
#include <optional>
#include <stdexcept>
#include <utility>

#include "core/Database.h"
#include "core/Text.h"
#include "core/Users.h"

namespace session {

namespace {

const std::string coilType = core::TextOf(core::ValueKind::Logical);
constexpr std::int64_t addressLimit = 65536;

// A whole number from 0; one beyond all limits counts as the largest. Nothing for any other text.
std::optional<std::int64_t> Address(const std::string& text) {
    const std::string digits = core::Trim(text);
    if (digits.empty() || digits.find_first_not_of("0123456789") != std::string::npos) {
        return std::nullopt;
    }
    constexpr double beyond = 1e15;
    return static_cast<std::int64_t>(std::min(core::Val(digits), beyond));
}

// As the address table counts the text of a row; no address where it is none.
std::int64_t Number(const std::string& text) {
    return Address(text).value_or(0);
}

std::size_t OrderOf(const std::string& aga) {
    return GroupOf(aga).value_or(groupCount);
}

}  // namespace

RegisterEditor::RegisterEditor(core::Database& dbconn, EditedStation station, const std::string& currentuser)
    : dbconn_(dbconn), station_(std::move(station)), addresses_(station_.choices.registers.registerCount == 1) {
    if (station_.choices.isNewStation) {
        ReadNew();
    } else {
        ReadStored();
    }
    Show(currentuser);
}

void RegisterEditor::ReadNew() {
    stations::BuildRegisterTable(dbconn_, station_.choices, stations::RegisterTableUse::AddressGrids);
    std::map<std::pair<std::string, std::string>, core::Row> earlier;
    if (station_.laidOut) {
        for (const core::Row& row :
             dbconn_.Query("select description,aga,startaddress,type from configdata_detail where locationID=?",
                           {station_.choices.locationID})) {
            earlier.emplace(std::pair(row.Text("description"), row.Text("aga")), row);
        }
    }
    for (stations::RegisterRow& row : stations::RegisterRows(dbconn_, station_.choices)) {
        Line line;
        const bool isCoil = core::SameText(row.type, coilType);
        row.type = isCoil ? coilType : station_.choices.registers.registerTypeName;
        line.text = {row.unit, row.description, "", ""};
        if (!station_.choices.MB_CONFIG) {
            line.text.address = std::to_string(row.address);
            line.text.type = row.type;
        } else if (const auto stored = earlier.find({row.description, row.aga});
                   stored != earlier.end() && Number(stored->second.Text("startaddress")) > 0) {
            line.text.address = stored->second.Text("startaddress");
            line.text.type = stored->second.Text("type");
            addresses_.Share(Number(line.text.address), line.text.type);
        }
        line.row = std::move(row);
        lines_.push_back(std::move(line));
    }
}

// Rows may share an address by the operator's will, and a map made otherwise may reach beyond the table.
void RegisterEditor::ReadStored() {
    for (const core::Row& row :
         dbconn_.Query("select rowid as row, description,startaddress,type,unit,aga,RS,WS from configData_detail where "
                       "locationID=? and streamNo=? order by srno",
                       {station_.choices.locationID, station_.streamno})) {
        Line line;
        line.rowid = row.Long("row");
        line.row = {.description = row.Text("description"),
                    .type = row.Text("type"),
                    .unit = row.Text("unit"),
                    .aga = row.Text("aga"),
                    .RS = row.Long("RS"),
                    .WS = row.Long("WS")};
        line.text = {line.row.unit, line.row.description, row.Text("startaddress"), line.row.type};
        addresses_.Share(Number(line.text.address), line.text.type);
        lines_.push_back(std::move(line));
    }
}

void RegisterEditor::Show(const std::string& currentuser) {
    std::array<std::size_t, groupCount> count{};
    for (std::size_t i = 0; i < lines_.size(); ++i) {
        const stations::RegisterRow& row = lines_[i].row;
        const auto group = GroupOf(row.aga);
        if (!group) {
            continue;
        }
        if (++count[*group] > parameterGroups[*group].capacity) {
            throw std::length_error("More rows of the group " + row.aga + " than its grid holds");
        }
        if (core::CheckWriteLevel(dbconn_, row.description, static_cast<int>(row.RS), static_cast<int>(row.WS),
                                  currentuser) != core::AccessLevel::Hidden) {
            shown_[*group].push_back(i);
        }
    }
}

std::vector<EditedRow> RegisterEditor::Rows(std::size_t group) const {
    std::vector<EditedRow> rows;
    for (const std::size_t line : shown_.at(group)) {
        rows.push_back(lines_[line].text);
    }
    return rows;
}

std::vector<std::string> RegisterEditor::DataTypes() const {
    std::vector<std::string> types = {coilType, core::TextOf(core::ValueKind::Integer)};
    if (core::ValueKindOf(station_.choices.registers.registerTypeName) == core::ValueKind::Float) {
        types.push_back(core::TextOf(core::ValueKind::Float));
    }
    return types;
}

EditedRow RegisterEditor::TakeOut(std::size_t group, std::size_t row) {
    inHand_ = &lines_.at(shown_.at(group).at(row));
    EditedRow text = inHand_->text;
    addresses_.DeleteHash(Number(text.address), text.type);
    if (text.type.empty()) {
        text.type = inHand_->row.type;
    }
    return text;
}

void RegisterEditor::PutBack() {
    if (const Line* line = std::exchange(inHand_, nullptr)) {
        addresses_.Share(Number(line->text.address), line->text.type);
    }
}

AddressVerdict RegisterEditor::Enter(const std::string& address, const std::string& type, bool evenIfTaken) {
    if (inHand_ == nullptr) {
        return {};
    }
    const std::int64_t number = Number(address);
    const std::string typed = core::Trim(type);
    const AddressOutcome outcome = evenIfTaken ? AddressOutcome::Overlaps : addresses_.Hash(number, typed);
    if (outcome == AddressOutcome::Overlaps && !evenIfTaken) {
        return {AddressVerdict::Question, "Address is overlapping\nPlease Choose another address", "txtstartaddress"};
    }
    const std::vector<std::string> types = DataTypes();
    const auto listed =
        std::find_if(types.begin(), types.end(), [&](const auto& each) { return core::SameText(each, typed); });
    AddressVerdict verdict{AddressVerdict::Refused, "", "txtstartaddress"};
    if (listed == types.end()) {
        verdict.message = "Invalid Datatype";
        verdict.control = "cmbdatatype";
    } else if (!Address(address)) {
        verdict.message = "Invalid Statraddress";
    } else if (number >= addressLimit) {
        verdict.message = "StartAddress must be less than 65536";
    } else if (outcome == AddressOutcome::Beyond) {
        verdict.message = *listed == coilType ? "There is no room for another coil in the table of addresses"
                                              : "The table of addresses ends at 10099";
    }
    if (!verdict.message.empty()) {
        if (outcome == AddressOutcome::Free) {
            addresses_.DeleteHash(number, typed);
        }
        return verdict;
    }
    Line& line = *std::exchange(inHand_, nullptr);
    if (evenIfTaken) {
        // An address that is shared by the operator's will leaves the row's old one taken, as it was before the row was
        // taken out.
        addresses_.Share(Number(line.text.address), line.text.type);
        addresses_.Share(number, *listed);
    }
    line.text.address = std::to_string(number);
    line.text.type = *listed;
    line.changed = true;
    return {};
}

void RegisterEditor::Store() {
    dbconn_.InTransaction([this] {
        if (station_.choices.isNewStation) {
            InsertAll();
        } else {
            UpdateChanged();
        }
    });
}

// Group by group, in the order of the grids; what no grid shows comes last.
void RegisterEditor::InsertAll() {
    std::vector<const Line*> lines;
    for (const Line& line : lines_) {
        lines.push_back(&line);
    }
    std::stable_sort(lines.begin(), lines.end(),
                     [](const Line* a, const Line* b) { return OrderOf(a->row.aga) < OrderOf(b->row.aga); });
    dbconn_.Execute("delete from configdata_Detail where locationID= ?", {station_.choices.locationID});
    int srno = 0;
    for (const Line* line : lines) {
        const stations::RegisterRow& row = line->row;
        const EditedRow& text = line->text;
        dbconn_.Execute("insert into configdata_detail values(?,?,?,?,?,0,?,?,?,0,?,?,?,1,null,null)",
                        {station_.choices.locationID, row.description, text.address.empty() ? "0" : text.address,
                         text.type.empty() ? row.type : text.type, ++srno, station_.choices.groupno, row.unit, row.aga,
                         row.CFP, row.RS, row.WS});
    }
}

void RegisterEditor::UpdateChanged() {
    for (Line& line : lines_) {
        if (line.changed &&
            dbconn_.Execute("update configdata_detail set startaddress=?,type=? where rowid=? and locationid=? and "
                            "description=?",
                            {line.text.address, line.text.type, line.rowid, station_.choices.locationID,
                             line.row.description}) == 0) {
            throw core::DatabaseError("The parameters of this station were changed meanwhile. Nothing was stored.");
        }
    }
}

}  // namespace session
