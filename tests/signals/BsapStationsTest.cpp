// Whole conversations with simulated BSAP stations in every manner: sign-on, list, search, single signals, a write, the
// archive and the audit trail.

#include <gtest/gtest.h>

#include "archive/bsap/Collecting.h"
#include "fieldsim/BsapStation.h"
#include "protocols/FieldTalk.h"
#include "protocols/bsap/BsapLink.h"
#include "reading/BsapList.h"
#include "signals/lists/SignalAccess.h"
#include "signals/lists/SignalFetch.h"
#include "support/Downloads.h"

namespace {

using namespace signals;
using fieldsim::DataAnswer;

constexpr int list = 54;
constexpr int places = 40;  // more than two replies

double ValueAt(int position) {
    return position * 16 + 0.0625;
}

fieldsim::SignalLists Lists() {
    std::vector<fieldsim::Signal> signals;
    for (int position = 1; position <= places; ++position) {
        signals.push_back(
            {position, "S" + std::to_string(position) + ".N.V", "M3", fieldsim::Kind::Float, ValueAt(position)});
    }
    return {{list, std::make_shared<fieldsim::SignalList>(signals)}};
}

struct Rows final : FetchView {
    std::vector<Signal> rows;
    void Signals(const std::vector<Signal>& signals) override {
        rows.insert(rows.end(), signals.begin(), signals.end());
    }
    bool Stopped() const override { return false; }
};

// Each answer comes late, behind a second copy of the answer before. Polls and acknowledgements are answered in time.
class OneBehind final : public fieldsim::Device {
  public:
    explicit OneBehind(fieldsim::Device& device) : device_(device) {}
    std::vector<fieldsim::Answer> Receive(std::string_view bytes, const fieldsim::Moment& now) override {
        auto answers = device_.Receive(bytes, now);
        constexpr std::size_t longestAcknowledgement = 18;
        if (answers.size() != 1 || answers[0].bytes.size() <= longestAcknowledgement) {
            return answers;
        }
        const std::string own = answers[0].bytes;
        answers[0].delayMs = 1500;
        if (!last_.empty()) {
            answers.insert(answers.begin(), {last_, 100});
        }
        last_ = own;
        return answers;
    }

  private:
    fieldsim::Device& device_;
    std::string last_;
};

struct BsapStations : testing::Test, support::SimulatedTalk {
    std::unique_ptr<fieldsim::BsapStation> station;
    std::unique_ptr<fieldsim::Device> between;

    void Open(int address, const fieldsim::BsapOptions& options) {
        station = std::make_unique<fieldsim::BsapStation>(address, Lists(), options);
        station->Archives()[2] = support::HourlyFile(9);
        ports.Attach(1, *station);
        talk.station.slaveaddress = address;
        talk.station.isCW = options.shortLayout;
        talk.station.phoneno.clear();
        talk.station.commtimeout = 1000;
        talk.station.modelno = options.shortLayout ? "CWGFC" : "TeleFlow";
        talk.bsap = {};
        talk.requests = {};
        line.CommPort(1);
        ASSERT_TRUE(line.PortOpen(true));
    }

    void ExpectVersion() const {
        EXPECT_EQ(talk.bsap.loadversion1, station->Options().loadVersion1);
        EXPECT_EQ(talk.bsap.loadversion2, station->Options().loadVersion2);
    }
    void ReadList() {
        const auto read = reading::getdata_BSAP(talk, list, core::ValueKind::Float, {});
        EXPECT_TRUE(read.collstatus);
        ASSERT_EQ(read.signals.size(), places + 1U);
        for (int position = 1; position <= places; ++position) {
            EXPECT_EQ(read.signals[static_cast<std::size_t>(position)].value, ValueAt(position));
        }
    }
    void ReadNames() {
        Rows fetched;
        EXPECT_EQ(FetchList(talk, list, fetched), FetchEnd::Whole);
        EXPECT_EQ(fetched.rows.size(), static_cast<std::size_t>(places));
        Rows found;
        EXPECT_EQ(SearchSignals(talk, "S1*", SearchKind::Name, found), FetchEnd::Whole);
        EXPECT_EQ(found.rows.size(), 11U);
    }
    void ReadAndWriteSingles() {
        const int address = fieldsim::BsapStation::Msd(list, 16);
        const std::vector<NamedSignal> named = {{"S1.N.V"}, {"S2.N.V"}};
        const ReadAnswer both = ReadByName(talk, named);
        ASSERT_EQ(both.answer, Answer::Good);
        EXPECT_EQ(both.signals[1].value, ValueAt(2));
        EXPECT_EQ(WriteNumber(talk, address, 16, core::ValueKind::Float), Answer::Good);
        const ReadAnswer back = ReadByAddress(talk, address);
        ASSERT_EQ(back.answer, Answer::Good);
        EXPECT_EQ(back.signals[0].value, 16);
        EXPECT_EQ(WriteByName(talk, "S16.N.V", ValueAt(16), core::ValueKind::Float), Answer::Good);
        const std::vector<NamedSignal> missing = {{"NOWHERE"}};
        EXPECT_EQ(ReadByName(talk, missing).answer, station->Options().echoSequences ? Answer::NoSignal : Answer::None);
    }
    void ReadHistory() {
        support::RecordingRun view;
        archive::Wish wish;
        wish.screen = talk.station.isCW ? archive::Screen::frmCW_archive : archive::Screen::frmarchive;
        wish.file = 2;
        EXPECT_EQ(archive::Collect(desk.dbconn, talk, wish, view).records, 9);
    }
};

}  // namespace

// Every message in turn has a number of 10 hex, at each place of the head and at all at once, and so have version and
// address. No request fails: what a head holds costs nothing.
TEST_F(BsapStations, AnyByteOfTheHeadMayBe10Hex) {
    for (const bool isCW : {false, true}) {
        for (int start = 0; start <= 16; ++start) {
            for (const bool high : {false, true}) {
                SCOPED_TRACE(std::to_string(isCW) + " " + std::to_string(start) + " " + std::to_string(high));
                fieldsim::BsapOptions options;
                options.shortLayout = isCW;
                options.answers = static_cast<DataAnswer>(start % 3);
                options.notReadyOneIn = start % 3;
                options.leadingByte = start % 4 != 3;
                options.loadVersion1 = start % 2 == 0 ? 0x10 : 0x12;
                options.loadVersion2 = start % 4 < 2 ? 0x10 : 0x34;
                Open(start % 5 == 0 ? 16 : 5, options);
                counters = {16 - start, 16 - 2 * (start % 9), high ? 16 : 0, {}};
                if (counters.appseqlow == 0 && !high) {
                    counters.appseqlow = 14;
                }
                ASSERT_TRUE(protocols::SignOn(talk));
                ExpectVersion();
                EXPECT_TRUE(talk.bsap.echoes);
                ReadList();
                ReadNames();
                ReadAndWriteSingles();
                ReadHistory();
                EXPECT_EQ(talk.requests.failed, 0);
            }
        }
    }
}

// The answer of the request before comes first, ours 1.5 commtimeouts behind the request.
TEST_F(BsapStations, AnothersAnswerIsPassedOverAndOursIsWaitedFor) {
    for (const bool isCW : {false, true}) {
        fieldsim::BsapOptions options;
        options.shortLayout = isCW;
        options.notReadyOneIn = 0;
        Open(5, options);
        ASSERT_TRUE(protocols::SignOn(talk));
        ReadAndWriteSingles();
        between = std::make_unique<OneBehind>(*station);
        ports.Attach(1, *between);
        reading::getdata_BSAP(talk, list, core::ValueKind::Float, {});  // the first has nothing in front
        talk.requests = {};
        ReadList();
        ReadNames();
        EXPECT_EQ(talk.requests.failed, 0);
        talk.bsap.loadversion1 = 0;
        ASSERT_TRUE(protocols::SignOn(talk));
        ExpectVersion();
    }
}

// "List Not Found" and a missing signal are what an answer says, not what an acknowledgement leaves open.
TEST_F(BsapStations, WhatIsNotThereIsSaidByAnAnswerAlone) {
    for (const bool countsForItself : {false, true}) {
        auto options = countsForItself ? fieldsim::BsapOptions::CountsForItself() : fieldsim::BsapOptions{};
        Open(5, options);
        ASSERT_TRUE(protocols::SignOn(talk));
        EXPECT_NE(talk.bsap.echoes, countsForItself);
        Rows none;
        EXPECT_EQ(FetchList(talk, 99, none), countsForItself ? FetchEnd::Failed : FetchEnd::None);
        ReadAndWriteSingles();
        ReadNames();
        ReadList();
        ReadHistory();
    }
}
