#include <gmock/gmock.h>

#include "reports/TotalsReport.h"
#include "support/ScratchDesk.h"

namespace {

struct TotalsReportTest : testing::Test {
    support::ScratchDesk desk;

    // A station with three totals in an order of its own, and what must not be taken for one of them.
    void Station(const std::string& model) {
        desk.dbconn.Execute("insert into configdata_master(locationID,consumer,modelno) values(7,'O''Brien',?)",
                            {model});
        desk.dbconn.Execute(
            "insert into configdata_detail(locationID,description,lastvalue,aga,StreamNo) values"
            "(7,'Energy Today',3,'TOTRND',1),(7,'Uncorrected Volume Today',2,'TOTRND',1),"
            "(7,'volume today',1,'TOTRND',1),(7,'Volume Yesterday',98,'IO',1),(7,'Volume Yesterday',99,'TOTRND',2)");
    }
    std::vector<core::Row> Rows() { return desk.dbconn.Query("select * from tblmail"); }
};

TEST_F(TotalsReportTest, ATotalIsFoundByItsName) {
    struct Case {
        const char* model;
        bool energy;
    };
    for (const Case& c : {Case{"TeleFlow", false}, Case{"TeleFlow+", false}, Case{"CWEFM-AGA7", false},
                          Case{"TeleCorrector", true}, Case{"TeleCorrector+", true}}) {
        desk.dbconn.Execute("delete from configdata_master");
        desk.dbconn.Execute("delete from configdata_detail");
        Station(c.model);
        EXPECT_TRUE(reports::makereport(desk.dbconn, 7, 1));
        ASSERT_EQ(Rows().size(), 1U);
        const core::Row row = Rows()[0];
        EXPECT_EQ(row.Text("Node Name"), "O'Brien");
        EXPECT_EQ(row.Number("Volume Today"), 1);
        EXPECT_EQ(row.Number("Uncorrected Volume Today"), 2);
        EXPECT_TRUE(row.IsNull("Volume Yesterday"));
        EXPECT_EQ(row.IsNull("Energy Today"), !c.energy) << c.model;
    }
}

TEST_F(TotalsReportTest, WhatWasNotReceivedIsNoTotal) {
    Station("TeleCorrector");
    desk.dbconn.Execute(
        "update configdata_detail set readat='2026-03-09 06:00:00', quality=case description when 'Energy Today' then "
        "'not received' when 'volume today' then 'refused' else 'good' end");
    EXPECT_TRUE(reports::makereport(desk.dbconn, 7, 1));
    EXPECT_TRUE(Rows()[0].IsNull("Energy Today"));
    EXPECT_TRUE(Rows()[0].IsNull("Volume Today"));
    EXPECT_EQ(Rows()[0].Number("Uncorrected Volume Today"), 2);
}

TEST_F(TotalsReportTest, AnotherModelLeavesTheTableAsItIs) {
    desk.dbconn.Execute("insert into tblmail(\"Node Name\") values('before')");
    Station("TeleRTU");
    EXPECT_FALSE(reports::makereport(desk.dbconn, 7, 1));
    EXPECT_FALSE(reports::makereport(desk.dbconn, 8, 1));
    ASSERT_EQ(Rows().size(), 1U);
    EXPECT_EQ(Rows()[0].Text("Node Name"), "before");
}

}  // namespace
