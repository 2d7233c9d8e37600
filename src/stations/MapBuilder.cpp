#include "stations/MapBuilder.h"

#include <algorithm>

#include "core/Database.h"
#include "core/Station.h"
#include "core/Text.h"

namespace stations {

namespace {

void DeleteDetail(core::Database& dbconn, const MapChoices& choices) {
    dbconn.Execute("delete from configdata_Detail where locationID= ?", {choices.locationID});
}

bool HasDetail(core::Database& dbconn, const MapChoices& choices) {
    return dbconn.First("select 1 from configdata_Detail where locationID= ? limit 1", {choices.locationID})
        .has_value();
}

// Writes the rows of one map, numbered from 1 over all of its queries.
class DetailWriter {
  public:
    DetailWriter(core::Database& dbconn, const MapChoices& choices) : dbconn_(dbconn), choices_(choices) {}

    // A row of `parameter` under its list position.
    void Template(const core::Row& row) { Insert(row["Description"], row["address"], row["datatype"], row, 1); }

    // A row of a CW table under its list position. Streams share the positions and are told by their number.
    void CwTemplate(const core::Row& row, int streamno) {
        Insert(row[0], row["startaddress"], row["type"], row, streamno);
    }

    void Register(const RegisterRow& row) {
        dbconn_.Execute("insert into configdata_detail values(?,?,?,?,?,0,?,?,?,?,?,?,?,1,null,null)",
                        {choices_.locationID, row.description, row.address, row.type, ++srno_, choices_.groupno,
                         row.unit, row.aga, row.address, row.CFP, row.RS, row.WS});
    }

    // Every Quantum row has the address 1, since the values are found by description, and no stream of its own.
    void Quantum(const core::Row& row) {
        dbconn_.Execute(
            "insert into configdata_detail (locationID,description,startaddress,type,srno,lastvalue,groupno,unit,aga,"
            "MSD,CFP,RS,WS) values(?,?,1,?,?,0,?,?,'Quantum',0,?,?,?)",
            {choices_.locationID, row["Description"], row["datatype"], ++srno_, choices_.groupno, row["unit"],
             row["CFP"], row["RS"], row["WS"]});
    }

  private:
    void Insert(const core::Value& description, const core::Value& address, const core::Value& type,
                const core::Row& row, int streamno) {
        dbconn_.Execute("insert into configdata_detail values(?,?,?,?,?,0,?,?,?,0,?,?,?,?,null,null)",
                        {choices_.locationID, description, address, type, ++srno_, choices_.groupno, row["unit"],
                         row["aga"], row["CFP"], row["RS"], row["WS"], streamno});
    }

    core::Database& dbconn_;
    const MapChoices& choices_;
    int srno_ = 0;
};

void BuildQuantum(core::Database& dbconn, const MapChoices& choices) {
    DetailWriter writer(dbconn, choices);
    for (const core::Row& row : dbconn.Query("select * from parameter where protocol= 'Quantum' order by srno")) {
        writer.Quantum(row);
    }
}

void BuildFromTemplate(core::Database& dbconn, const MapChoices& choices) {
    DetailWriter writer(dbconn, choices);
    for (const std::string& query : TemplateMapQueries(choices.optAga3)) {
        for (const core::Row& row : dbconn.Query(query)) {
            writer.Template(row);
        }
    }
}

// The tables stand in the order of their srno. A stream without a method gets no rows.
void BuildStreams(core::Database& dbconn, const MapChoices& choices) {
    const int streams = core::IsMultiStreamModel(choices.modelno) ? std::clamp(choices.No_Stream, 1, 4) : 1;
    DetailWriter writer(dbconn, choices);
    for (int streamno = 1; streamno <= streams; ++streamno) {
        const std::string table = CwTable(core::Trim(choices.stream[static_cast<std::size_t>(streamno - 1)]));
        if (table.empty()) {
            continue;
        }
        for (const core::Row& row : dbconn.Query("select * from " + table)) {
            writer.CwTemplate(row, streamno);
        }
    }
}

std::vector<core::Row> RegisterSource(core::Database& dbconn, const MapChoices& choices) {
    if (choices.protocol != core::Protocol::Modbus) {
        return dbconn.Query(
            "select Description, type, MBUS as MSD, unit, aga, CFP, RS, WS from parameter "
            "where protocol = 'BSAP' order by srno");
    }
    if (core::IsCwModel(choices.modelno)) {
        return dbconn.Query("select * from " + CwTable(choices.optAga3 ? "AGA3" : "AGA7") + " where aga<>'TIME'");
    }
    return dbconn.Query(
        "select Description, datatype as type, MBUS as MSD, unit, aga, CFP, RS, WS from mdbus_table "
        "where locationID = ?",
        {choices.locationID});
}

RegisterRow WorkedOut(const core::Row& row, const RegisterSize& registers) {
    const bool coil = core::SameText(row.Text("type"), "Boolean");
    const std::int64_t MSD = row.Long("MSD");
    RegisterRow out;
    out.description = row[0].Text();
    out.type = coil ? "Coil(" + row.Text("type") + ")" : row.Text("type");
    out.address = coil || MSD == 0 ? MSD : MSD * registers.registerCount - registers.registerOffset;
    out.unit = row.Text("unit");
    out.aga = row.Text("aga");
    out.CFP = row.Bool("CFP");
    out.RS = row.Long("RS");
    out.WS = row.Long("WS");
    return out;
}

void BuildNew(core::Database& dbconn, const MapChoices& choices) {
    const bool isCW = core::IsCwModel(choices.modelno);
    const bool isModbus = choices.protocol == core::Protocol::Modbus;
    const bool isMicro = core::SameText(choices.modelno, "CW_Micro");
    if (isModbus && choices.MB_CONFIG && !isCW && !isMicro) {
        return;  // laid out by hand before the Save
    }
    DeleteDetail(dbconn, choices);
    if (choices.protocol == core::Protocol::Quantum) {
        BuildQuantum(dbconn, choices);
        return;
    }
    if (isMicro || !(isModbus || choices.protocol == core::Protocol::Bsap)) {
        return;  // the parameters of a CW_Micro come from its signal lists
    }
    if (isCW) {
        BuildStreams(dbconn, choices);
    } else if (isModbus) {
        BuildRegisterMap(dbconn, choices);
    } else {
        BuildFromTemplate(dbconn, choices);
    }
}

}  // namespace

void BuildMap(core::Database& dbconn, const MapChoices& choices) {
    dbconn.InTransaction([&] {
        if (choices.isNewStation) {
            BuildNew(dbconn, choices);
        } else if (choices.protocol == core::Protocol::Modbus && core::IsCwModel(choices.modelno) &&
                   !HasDetail(dbconn, choices)) {
            BuildStreams(dbconn, choices);
        }
    });
}

void BuildRegisterMap(core::Database& dbconn, const MapChoices& choices) {
    dbconn.InTransaction([&] {
        BuildRegisterTable(dbconn, choices, RegisterTableUse::SetRegister);
        if (choices.isNewStation) {
            DeleteDetail(dbconn, choices);
        } else if (HasDetail(dbconn, choices)) {
            return;
        }
        DetailWriter writer(dbconn, choices);
        for (const RegisterRow& row : RegisterRows(dbconn, choices)) {
            writer.Register(row);
        }
    });
}

bool IsIntegerMap(core::Database& dbconn, std::int64_t locationID) {
    return dbconn
        .First(
            "select 1 from configdata_detail where locationID=? and type='Float' and startaddress not like '%-%' and "
            "cast(startaddress as integer) > 0 and cast(startaddress as integer) % 2 = 0 limit 1",
            {locationID})
        .has_value();
}

void BuildRegisterTable(core::Database& dbconn, const MapChoices& choices, RegisterTableUse use) {
    dbconn.InTransaction([&] {
        dbconn.Execute("delete from mdbus_table where locationID = ?", {choices.locationID});
        int srno = 0;
        for (const std::string& query : RegisterTableQueries(choices.optAga3, use)) {
            for (const core::Row& row : dbconn.Query(query)) {
                const std::int64_t MBUS = choices.MB_CONFIG ? 0 : row.Long("MBUS");
                dbconn.Execute("insert into mdbus_table values(?,?,?,?,?,0,?,?,?,?,?,?,?,1)",
                               {choices.locationID, row["Description"], row["address"], row["datatype"], ++srno,
                                choices.groupno, row["unit"], row["aga"], MBUS, row["CFP"], row["RS"], row["WS"]});
            }
        }
    });
}

std::vector<RegisterRow> RegisterRows(core::Database& dbconn, const MapChoices& choices) {
    std::vector<RegisterRow> rows;
    for (const core::Row& row : RegisterSource(dbconn, choices)) {
        rows.push_back(WorkedOut(row, choices.registers));
    }
    return rows;
}

}  // namespace stations
