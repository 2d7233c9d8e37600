#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "fieldsim/BsapFrame.h"
#include "protocols/FieldTalk.h"
#include "protocols/bsap/Bsap.h"
#include "protocols/bsap/BsapLink.h"
#include "support/Hex.h"

using namespace protocols;
using support::Bytes;
using support::Hex;

namespace {

std::string Reply(const char* body) {
    return fieldsim::BsapFrame(Bytes(body));
}

// Replies of station 1: status 0 to the poll, load version 12 34.
const char* const pollLong = "00 01 00 86 01 00 01";
const char* const pollShort = "00 01 86 01 00 01";
const char* const versionLong = "00 02 00 0B 00 00 A0 00 00 00 00 12 34 23";
const char* const versionShort = "00 02 0B 00 00 A0 00 00 00 00 12 34 23";
const char* const signedIn = "00 01 00 86 01 00 02";

struct Outcome {
    const char* name;
    std::string phoneno;
    std::string poll;
    std::string version;
    std::size_t sends;
    int rtustatus;
    bool isCW;
    bool expected;
};

class BsapLink : public testing::Test, public support::ScriptedTalk {
  public:
    BsapLink() {
        talk.station.slaveaddress = 1;
        talk.station.consumer = "O'Neil Works";
        talk.station.phoneno = "";
        talk.currentuser = "rao";
        line.PortOpen(true);
    }

    std::string Log() const { return support::FileText(desk.shared.logpath); }
    std::int64_t AuditLines() { return desk.dbconn.First("select count(*) from TTS_table").value()[0].Long(); }
};

}  // namespace

TEST_F(BsapLink, SignOnOutcomes) {
    const std::string poll = Reply(pollLong);
    const std::string version = Reply(versionLong);
    const Outcome cases[] = {
        {"good", "", poll, version, 3, 0, false, true},
        {"good CW", "", Reply(pollShort), Reply(versionShort), 3, 0, true, true},
        {"silent", "", "", "", 1, -1000, false, false},
        {"one byte", "", "\x10", "", 1, -1000, false, false},
        {"cut", "", poll.substr(0, 7), "", 1, -1000, false, false},
        {"ends before the status", "", Reply("00 01 00 86 01"), "", 1, -1000, false, false},
        {"another address", "", Reply("00 01 00 86 02 00 01"), "", 1, 0, false, false},
        {"another address behind a modem", "0265", Reply("00 01 00 86 02 00 01"), "", 1, 0, false, false},
        {"another address of a CW", "", Reply("00 01 86 02 00 01"), "", 1, 0, true, false},
        {"the same behind a modem", "0265", Reply("00 01 86 02 00 01"), Reply(versionShort), 3, 0, true, true},
        {"silent CW behind a modem", "0265", "", "", 1, -1000, true, false},
        {"status 1", "", Reply("00 01 00 86 01 01 01"), version, 3, 1, false, true},
        {"status 2", "", Reply("00 01 00 86 01 02 01"), "", 1, 2, false, false},
        {"status 2 of a CW behind a modem", "0265", Reply("00 01 86 02 02 01"), "", 1, 2, true, false},
        {"doubled sequence", "", Reply("00 10 00 86 01 00 10"), version, 3, 0, false, true},
        {"padded", "", "\xFF" + Reply(pollShort), "\xFF" + Reply(versionShort), 3, 0, false, true},
        {"noise around", "", "\x10" + poll + "\x10\x02", "x" + version, 3, 0, false, true},
        {"a wrong check", "", poll.substr(0, poll.size() - 1) + "x", "", 1, -1000, false, false},
        {"a poll reply of another station in front", "", Reply("00 01 00 86 02 00 01") + poll, version, 3, 0, false,
         true},
        {"no version", "", poll, "", 3, 0, false, false},
        {"version 0 0", "", poll, Reply("00 02 00 0B 00 00 A0 00 00 00 00 00 00 23"), 3, 0, false, false},
        {"version 0 5", "", poll, Reply("00 02 00 0B 00 00 A0 00 00 00 00 00 05 23"), 3, 0, false, true},
        {"only acknowledged", "", poll, Reply(signedIn), 5, 0, false, false},
        {"version on the poll", "", poll, Reply(signedIn), 5, 0, false, true},
        {"acknowledged at length", "", poll, Reply("00 02 00 86 01 00 01 02 03 04 05"), 5, 0, false, false},
    };
    for (const Outcome& c : cases) {
        SCOPED_TRACE(c.name);
        talk.station.isCW = c.isCW;
        talk.station.phoneno = c.phoneno;
        line.sent.clear();
        line.replies = {c.poll, Reply(signedIn), c.version};
        if (std::string(c.name) == "version on the poll") {
            line.replies.push_back(version);
        }
        EXPECT_EQ(SignOn(talk), c.expected);
        EXPECT_EQ(talk.bsap.rtustatus, c.rtustatus);
        EXPECT_EQ(Hex(talk.bsap.lastpollreply), Hex(c.poll));
        EXPECT_EQ(line.sent.size(), c.sends);
    }
}

TEST_F(BsapLink, SignOnSendsItsThreeMessagesAndKeepsTheVersion) {
    line.replies = {Reply(pollLong), Reply(signedIn), Reply(versionLong)};
    ASSERT_TRUE(SignOn(talk, {screenPassword, SignOnLog::None, SignOnTexts::Polling}));
    ASSERT_EQ(line.sent.size(), 3U);
    EXPECT_EQ(Hex(line.sent[0]), "10 02 01 01 85 10 10 10 03 2C B5");
    EXPECT_EQ(Hex(line.sent[1]).substr(0, 54), "10 02 01 02 A0 02 00 0B 00 70 05 01 34 38 32 39 31 33 ");
    EXPECT_EQ(Hex(line.sent[2]), "10 02 01 03 A0 04 00 0B 00 04 02 01 FF 11 23 4F 4E 2E 2E 00 10 03 49 B6");
    EXPECT_EQ(talk.bsap.loadversion1, 0x12);
    EXPECT_EQ(talk.bsap.loadversion2, 0x34);
    EXPECT_EQ(desk.clock.Elapsed(), 3 * 2000U);
    EXPECT_EQ(desk.feedback.status,
              (std::vector<std::string>{"Polling Rtu.....[O'Neil Works]", "Connected Since 09/03/2026 07:59:36"}));
    EXPECT_EQ(desk.dbconn.Query("select * from TTS_table").back()[0].Text(),
              "09/03/2026 07:59:36: User rao connected to RTU O'Neil Works.");
}

TEST_F(BsapLink, VersionFromThePollWhereTheStationIsReadSo) {
    talk.bsap.usepoll = true;
    line.replies = {Reply(pollLong), Reply(signedIn), Reply(versionShort)};
    EXPECT_TRUE(SignOn(talk));
    EXPECT_EQ(Hex(line.sent[2]).substr(0, 23), "10 02 01 03 85 10 10 10");
    EXPECT_EQ(talk.bsap.loadversion1, 0x12);
    EXPECT_EQ(talk.bsap.loadversion2, 0x34);
}

TEST_F(BsapLink, LogHasWhatTheScreenLogs) {
    const std::string all = "\rPolling RTU Msg\n\r10 2 1 1 85 10 10 10 3 2C B5 \n\rPolling Reply from RTU\n\r\n";
    const std::pair<SignOnLog, std::string> cases[] = {
        {SignOnLog::None, ""}, {SignOnLog::PollReply, "\rPolling Reply from RTU\n\r\n"}, {SignOnLog::All, all}};
    desk.shared.logGenflag = true;
    for (const auto& [logs, text] : cases) {
        std::filesystem::remove(desk.shared.logpath);
        counters = {};
        SignOn(talk, {"", logs, SignOnTexts::All});
        EXPECT_EQ(Log(), text);
    }
    line.replies = {Reply(pollLong), Reply(signedIn), Reply(versionLong)};
    SignOn(talk);
    for (const char* title : {"Sign On Message", "Sign On Reply", "GetVersion Message", "Vesrion response"}) {
        const std::string log = Log();
        EXPECT_NE(log.find(std::string("\r") + title + "\n"), std::string::npos) << title;
    }
}

TEST_F(BsapLink, AnAuditTrailThatFailsLosesNoStation) {
    desk.dbconn.Execute("drop table TTS_table");
    line.replies = {Reply(pollLong), Reply(signedIn), Reply(versionLong)};
    EXPECT_TRUE(SignOn(talk));
    ASSERT_EQ(Errors().size(), 1U);
    EXPECT_NE(Errors()[0].find("TTS_table"), std::string::npos);
}

TEST_F(BsapLink, AConversationThatEndsSignsOnNowhere) {
    line.replies = {Reply(pollLong), Reply(signedIn), Reply(versionLong)};
    desk.clock.After(3000, [this] { field.TakeOver("taken"); });
    EXPECT_FALSE(SignOn(talk));
    EXPECT_EQ(line.sent.size(), 2U);
    EXPECT_EQ(AuditLines(), 0);
}

TEST_F(BsapLink, PollIsNeededForElevenToSeventeenBytes) {
    const std::pair<std::size_t, bool> cases[] = {{0, false}, {10, false}, {11, true}, {17, true}, {18, false}};
    for (const auto& [length, needed] : cases) {
        line.sent.clear();
        line.replies = {"answer"};
        std::string pollReply;
        EXPECT_EQ(Check_NeedPoll(talk, std::string(length, 'x'), pollReply), needed) << length;
        EXPECT_EQ(line.sent.size(), needed ? 1U : 0U);
        EXPECT_EQ(pollReply, needed ? "answer" : "");
    }
}

TEST_F(BsapLink, ARequestIsPolledForUntilItsAnswerIsThere) {
    const std::string answer = Reply("00 77 00 0B 00 00 A0 00 00 00 00 0F 00 41 42 43");
    desk.shared.logGenflag = true;
    line.replies = {answer};
    const std::string request = Bsap(counters, talk.bsap, false).GetVersion_RTU(1);
    EXPECT_EQ(Hex(AskStation(talk, request).answer.value().text), Hex(answer));
    EXPECT_EQ(line.sent, std::vector<std::string>{request});

    line.sent.clear();
    line.replies = {Reply(signedIn), Reply(pollLong), answer, "ok"};
    const StationReply reply = AskStation(talk, request, {"Get List 54 Response", true});
    EXPECT_EQ(Hex(reply.answer.value().text), Hex(answer));
    EXPECT_EQ(reply.sends, 2);
    ASSERT_EQ(line.sent.size(), 4U);
    EXPECT_EQ(Hex(line.sent[1]).substr(0, 23), "10 02 01 02 85 10 10 10");
    EXPECT_EQ(Hex(line.sent[2]).substr(0, 23), "10 02 01 03 85 10 10 10");
    EXPECT_EQ(Hex(line.sent[3]).substr(0, 17), "10 02 01 04 8B 04");  // not before the answer is there
    const std::string log = Log();
    EXPECT_EQ(log.substr(log.size() - 34), "\rGet List UP_ACK Response\n\r6F 6B \n");
    EXPECT_NE(log.find("\rGet List 54 Response\n\r10 2 0 1 "), std::string::npos);

    // Never ready: four sends, and the station has acknowledged.
    line.sent.clear();
    line.replies = {6, Reply(signedIn)};
    const StationReply never = AskStation(talk, request);
    EXPECT_FALSE(never.answer);
    EXPECT_TRUE(never.acknowledged);
    EXPECT_EQ(line.sent.size(), 6U);

    // Acknowledged, then nothing; what the poll brings late does not go to the next request.
    line.replies = {Reply(signedIn), "", answer, ""};
    EXPECT_FALSE(AskStation(talk, request).answer);
    EXPECT_FALSE(AskStation(talk, request).answer);
}

TEST_F(BsapLink, AnAnswerLeftBehindByAnotherConversationIsFetchedOnce) {
    const std::string left = Reply("00 09 0B 12 00 A0 00 00 00 00 0F 00 41 42 43 44");
    line.replies = {left, "", Reply(pollLong), Reply(signedIn), Reply(versionLong)};
    EXPECT_TRUE(SignOn(talk));
    EXPECT_EQ(Hex(line.sent.at(1)).substr(0, 17), "10 02 01 02 8B 02");
}

// Another's answer comes in front of this one's or alone; the last has numbers of which nothing is known.
TEST_F(BsapLink, NoVersionIsTakenFromAnothersAnswer) {
    const auto answer = [](const std::string& request, const char* version) {
        return "\xFF" + fieldsim::BsapFrame(std::string(1, '\0') + request[3] + "\x0B" + request.substr(5, 2) +
                                            Bytes("A0 00 00 00 00") + Bytes(version) + Bytes("23 4F 4E 2E 2E 00"));
    };
    const auto link = [](const std::string& request) {
        const std::string serial(1, request[3]);
        return "\xFF" + fieldsim::BsapFrame(std::string(1, '\0') + serial + Bytes("86 01 00") + serial);
    };
    enum Comes { InFront, Alone, FromNowhere };
    for (const Comes comes : {InFront, Alone, FromNowhere}) {
        const std::string early = Bsap(counters, talk.bsap, false).GetVersion_RTU(1);
        line.sent.clear();
        line.answer = [&](const std::string& frame) {
            switch (line.sent.size()) {
                case 1:
                case 2:
                    return link(frame);
                case 3:
                    return comes == FromNowhere
                               ? answer("xxx\x77xy", "55 66")
                               : answer(early, "55 66") + (comes == Alone ? "" : answer(frame, "12 34"));
                default:
                    return answer(frame, "12 34");
            }
        };
        EXPECT_EQ(SignOn(talk), comes != Alone);
        EXPECT_EQ(talk.bsap.loadversion1, comes == Alone ? 0 : 0x12);
        EXPECT_EQ(talk.bsap.echoes, comes != Alone);
    }
}
