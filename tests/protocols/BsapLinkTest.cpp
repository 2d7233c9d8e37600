#include <gtest/gtest.h>

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

// The answer to a request for the version, with the numbers of the request.
std::string VersionFor(const std::string& request, const char* version) {
    return "\xFF" + fieldsim::BsapFrame(std::string(1, '\0') + request[3] + "\x0B" + request.substr(5, 2) +
                                        Bytes("A0 00 00 00 00") + Bytes(version) + Bytes("23 4F 4E 2E 2E 00"));
}

class BsapLink : public testing::Test, public support::ScriptedTalk {
  public:
    BsapLink() {
        talk.station.slaveaddress = 1;
        talk.station.consumer = "O'Neil Works";
        talk.station.phoneno = "";
        talk.currentuser = "rao";
        line.PortOpen(true);
    }

    void ReplyWell() { line.replies = {Reply(pollLong), Reply(signedIn), Reply(versionLong)}; }
};

}  // namespace

TEST_F(BsapLink, SignOnOutcomes) {
    const std::string poll = Reply(pollLong);
    const std::string version = Reply(versionLong);
    const std::string shortVersion = Reply(versionShort);
    enum { TeleFlow = false, CW = true };
    const struct {
        const char* name;
        std::string poll;
        std::string version;  // or what comes first instead
        std::size_t sends;
        int rtustatus;
        bool expected;
        bool isCW = TeleFlow;
        const char* phoneno = "";
        std::string polled = "";
    } cases[] = {
        {"good", poll, version, 3, 0, true},
        {"good CW", Reply(pollShort), shortVersion, 3, 0, true, CW},
        {"silent", "", "", 1, -1000, false},
        {"ends before the status", Reply("00 01 00 86 01"), "", 1, -1000, false},
        {"another address behind a modem", Reply("00 01 00 86 02 00 01"), "", 1, 0, false, TeleFlow, "0265"},
        {"another address of a CW", Reply("00 01 86 02 00 01"), "", 1, 0, false, CW},
        {"the same behind a modem", Reply("00 01 86 02 00 01"), shortVersion, 3, 0, true, CW, "0265"},
        {"status 1", Reply("00 01 00 86 01 01 01"), version, 3, 1, true},
        {"status 2", Reply("00 01 00 86 01 02 01"), "", 1, 2, false},
        {"doubled sequence", Reply("00 10 00 86 01 00 10"), version, 3, 0, true},
        {"padded", "\xFF" + Reply(pollShort), "\xFF" + shortVersion, 3, 0, true},
        {"a wrong check", poll.substr(0, poll.size() - 1) + "x", "", 1, -1000, false},
        {"a reply of another station in front", Reply("00 01 00 86 02 00 01") + poll, version, 3, 0, true},
        {"no version", poll, "", 3, 0, false},
        {"version 0 0", poll, Reply("00 02 00 0B 00 00 A0 00 00 00 00 00 00 23"), 3, 0, false},
        {"version 0 5", poll, Reply("00 02 00 0B 00 00 A0 00 00 00 00 00 05 23"), 3, 0, true},
        {"only acknowledged", poll, Reply(signedIn), 5, 0, false},
        {"version on the poll", poll, Reply(signedIn), 5, 0, true, TeleFlow, "", version},
        {"acknowledged at length", poll, Reply("00 02 00 86 01 00 01 02 03 04 05"), 5, 0, false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        talk.station.isCW = c.isCW;
        talk.station.phoneno = c.phoneno;
        line.sent.clear();
        line.replies = {c.poll, Reply(signedIn), c.version, c.polled};
        EXPECT_EQ(SignOn(talk), c.expected);
        EXPECT_EQ(talk.bsap.rtustatus, c.rtustatus);
        EXPECT_EQ(Hex(talk.bsap.lastpollreply), Hex(c.poll));
        EXPECT_EQ(line.sent.size(), c.sends);
    }
}

TEST_F(BsapLink, SignOnSendsItsThreeMessagesAndKeepsTheVersion) {
    desk.shared.logGenflag = true;
    ReplyWell();
    ASSERT_TRUE(SignOn(talk, {screenPassword, SignOnLog::All, SignOnTexts::Polling}));
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
    const std::string log = support::FileText(desk.shared.logpath);
    EXPECT_TRUE(log.starts_with("\rPolling RTU Msg\n\r10 2 1 1 85 10 10 10 3 2C B5 \n\rPolling Reply from RTU\n"))
        << log;
    EXPECT_NE(log.find("\rVesrion response\n"), std::string::npos) << log;

    // From the poll where the station is read so.
    talk.bsap.usepoll = true;
    line.sent.clear();
    line.replies = {Reply(pollLong), Reply(signedIn), Reply("00 02 0B 00 00 A0 00 00 00 00 56 78 23")};
    EXPECT_TRUE(SignOn(talk));
    EXPECT_EQ(Hex(line.sent[2]).substr(0, 23), "10 02 01 06 85 10 10 10");
    EXPECT_EQ(talk.bsap.loadversion1, 0x56);
    EXPECT_EQ(talk.bsap.loadversion2, 0x78);
}

TEST_F(BsapLink, AnAuditTrailThatFailsLosesNoStation) {
    desk.dbconn.Execute("drop table TTS_table");
    ReplyWell();
    EXPECT_TRUE(SignOn(talk));
    ASSERT_EQ(Errors().size(), 1U);
    EXPECT_NE(Errors()[0].find("TTS_table"), std::string::npos);
}

TEST_F(BsapLink, AConversationThatEndsSignsOnNowhere) {
    ReplyWell();
    desk.clock.After(3000, [this] { field.TakeOver("taken"); });
    EXPECT_FALSE(SignOn(talk));
    EXPECT_EQ(line.sent.size(), 2U);
    EXPECT_TRUE(desk.dbconn.Query("select * from TTS_table").empty());
}

TEST_F(BsapLink, PollIsNeededForElevenToSeventeenBytes) {
    const std::pair<std::size_t, bool> cases[] = {{10, false}, {11, true}, {17, true}, {18, false}};
    for (const auto& [length, needed] : cases) {
        line.replies = {"answer"};
        std::string pollReply;
        EXPECT_EQ(Check_NeedPoll(talk, std::string(length, 'x'), pollReply), needed) << length;
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
    const std::string log = support::FileText(desk.shared.logpath);
    EXPECT_TRUE(log.starts_with("\rGet List 54 Response\n\r10 2 0 1 ")) << log;
    EXPECT_TRUE(log.ends_with("\rGet List UP_ACK Response\n\r6F 6B \n")) << log;

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
                    return comes == FromNowhere ? VersionFor("xxx\x77xy", "55 66")
                           : comes == Alone     ? VersionFor(early, "55 66")
                                                : VersionFor(early, "55 66") + VersionFor(frame, "12 34");
                default:
                    return VersionFor(frame, "12 34");
            }
        };
        EXPECT_EQ(SignOn(talk), comes != Alone);
        EXPECT_EQ(talk.bsap.loadversion1, comes == Alone ? 0 : 0x12);
        EXPECT_EQ(talk.bsap.echoes, comes != Alone);
    }
}

// What comes may be another's for a while, but not for ever.
TEST_F(BsapLink, ARequestWaitsFourTimesBehindAnothersAnswers) {
    const std::string early = Bsap(counters, talk.bsap, false).GetVersion_RTU(1);
    line.answer = [&](const std::string&) { return VersionFor(early, "55 66"); };
    desk.clock.Every(500, [&] { line.Output(""); });
    EXPECT_FALSE(AskStation(talk, Bsap(counters, talk.bsap, false).GetVersion_RTU(1)).answer);
    EXPECT_EQ(desk.clock.Elapsed(), 5 * 2000U);
}

TEST_F(BsapLink, ASilentStationIsTriedAsOftenAsSaid) {
    EXPECT_FALSE(SignOnInTries(talk, {}, 3));
    EXPECT_EQ(line.sent.size(), 3U);
    EXPECT_EQ(talk.requests.failed, 3);
    line.replies = {"", Reply(pollLong), Reply(signedIn), Reply(versionLong)};
    EXPECT_TRUE(SignOnInTries(talk, {}, 3));
    EXPECT_EQ(talk.requests.good, 1);
}
