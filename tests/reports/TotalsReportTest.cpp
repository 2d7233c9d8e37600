#include <gmock/gmock.h>

#include "reports/TotalsReport.h"
#include "support/ScratchDesk.h"

namespace {

// A station with three totals in an order of its own, and what must not be taken for one of them.
TEST(TotalsReport, ATotalIsFoundByItsNameAndWhatWasNotReceivedIsNone) {
    support::ScratchDesk desk;
    desk.dbconn.Execute("insert into tblmail(\"Node Name\") values('before')");
    desk.dbconn.Execute("insert into configdata_master(locationID,consumer) values(7,'O''Brien')");
    desk.dbconn.Execute(
        "insert into configdata_detail(locationID,description,lastvalue,aga,StreamNo) values"
        "(7,'Energy Today',3,'TOTRND',1),(7,'Uncorrected Volume Today',2,'TOTRND',1),"
        "(7,'volume today',1,'TOTRND',1),(7,'Volume Yesterday',98,'IO',1),(7,'Volume Yesterday',99,'TOTRND',2)");
    // The report: name, volume of today and of yesterday, uncorrected, energy. Empty: as it was.
    const auto report = [&](const char* model) {
        desk.dbconn.Execute("update configdata_master set modelno=?", {model});
        const bool made = reports::makereport(desk.dbconn, 7, 1);
        return made ? desk.dbconn.Texts(
                          "select \"Node Name\" || ' ' || ifnull(\"Volume Today\",'-') || ' ' || ifnull(\"Volume "
                          "Yesterday\",'-') || ' ' || ifnull(\"Uncorrected Volume Today\",'-') || ' ' || "
                          "ifnull(\"Energy Today\",'-') from tblmail")
                    : std::vector<std::string>();
    };
    EXPECT_THAT(report("TeleRTU"), testing::IsEmpty());
    EXPECT_FALSE(reports::makereport(desk.dbconn, 8, 1));
    EXPECT_THAT(desk.dbconn.Texts("select \"Node Name\" from tblmail"), testing::ElementsAre("before"));
    for (const char* const model : {"TeleFlow", "TeleFlow+", "CWEFM-AGA7"}) {
        EXPECT_THAT(report(model), testing::ElementsAre("O'Brien 1.0 - 2.0 -")) << model;
    }
    for (const char* const model : {"TeleCorrector", "TeleCorrector+"}) {
        EXPECT_THAT(report(model), testing::ElementsAre("O'Brien 1.0 - 2.0 3.0")) << model;
    }
    desk.dbconn.Execute(
        "update configdata_detail set readat='2026-03-09 06:00:00', quality=case description when 'Energy Today' then "
        "'not received' when 'volume today' then 'refused' else 'good' end");
    EXPECT_THAT(report("TeleCorrector"), testing::ElementsAre("O'Brien - - 2.0 -"));
}

}  // namespace
