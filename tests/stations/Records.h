#pragma once

#include <map>
#include <string>

#include "stations/StationRegister.h"
#include "stations/Tables.h"

// Station records as an operator fills them, and the whole database as texts.
namespace records {

// A record that every check lets pass.
inline stations::StationRecord Filled(std::int64_t locationId = 1, const std::string& consumer = "Mill") {
    stations::StationRecord record;
    record.locationId = locationId;
    record.consumer = consumer;
    record.rtumake = "BB";
    record.modelno = "TeleFlow";
    record.comtype = "Direct Comport";
    record.systemtype = "12 VDC";
    record.comport = "COM1";
    record.baudrate = "9600,N,8,1";
    record.protocol = "BSAP";
    record.slaveaddress = "1";
    record.groupno = "1";
    return record;
}

inline tables::Names AllTables(core::Database& dbconn) {
    return tables::Texts(dbconn, "select name from sqlite_master where type='table' order by name");
}

// Every row of every table, to tell whether anything at all has changed.
inline std::map<std::string, std::string> Snapshot(core::Database& dbconn) {
    std::map<std::string, std::string> all;
    for (const std::string& table : AllTables(dbconn)) {
        std::string& text = all[table];
        const auto kind = dbconn.First("select wr from pragma_table_list where name=?", {table});
        const std::string number = kind && kind->Bool("wr") ? "" : "rowid, ";  // where a table has one
        for (const core::Row& row : dbconn.Query("select " + number + "* from " + table)) {
            for (std::size_t i = 0; i < row.Size(); ++i) {
                text += row[i].Text() + '\t';
            }
            text += '\n';
        }
    }
    return all;
}

}  // namespace records
