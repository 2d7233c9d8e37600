#include <gtest/gtest.h>

#include "protocols/inspect/FrameFields.h"
#include "support/Hex.h"

using namespace protocols;
using support::Bytes;

namespace {

const Wire rtu{"Modbus", "RTU"};
const Wire ascii{"Modbus", "ASCII"};
const Wire bsap{"BSAP", ""};
const Wire cw{"BSAP", "", true};
const Wire quantum{"Quantum", ""};

// "0+1 slave=1" a field, in lines. Every byte is to be in one of them.
std::string Named(std::string_view bytes, const Wire& wire, Direction direction, std::string_view request = {}) {
    std::string text;
    std::size_t next = 0;
    for (const FrameField& field : FrameFields(bytes, wire, direction, request)) {
        EXPECT_EQ(field.offset, next) << field.name;
        next = field.offset + field.length;
        text += (text.empty() ? "" : "\n") + std::to_string(field.offset) + "+" + std::to_string(field.length) + " " +
                field.name + "=" + field.value;
    }
    EXPECT_EQ(next, bytes.size()) << text;
    return text;
}

// The fields are among those.
void ExpectFields(const std::string& named, const std::string& fields) {
    EXPECT_NE(("\n" + named + "\n").find("\n" + fields + "\n"), std::string::npos) << named << "\n\n" << fields;
}

std::string Sent(const char* hex, const Wire& wire) {
    return Named(Bytes(hex), wire, Direction::TX);
}

std::string Received(const char* hex, const Wire& wire, const char* request = "") {
    return Named(Bytes(hex), wire, Direction::RX, Bytes(request));
}

}  // namespace

TEST(FrameFields, ModbusRtuRequests) {
    EXPECT_EQ(Sent("01 03 00 64 00 0A 84 12", rtu),
              "0+1 slave=1\n"
              "1+1 function=3 read holding registers\n"
              "2+2 register=100 on the line, 101 in the map\n"
              "4+2 quantity=10\n"
              "6+2 check=right");
    EXPECT_EQ(Sent("01 05 00 04 FF 00 CD FB", rtu),
              "0+1 slave=1\n"
              "1+1 function=5 write one coil\n"
              "2+2 coil=4 on the line, 5 in the map\n"
              "4+2 value=65280 on\n"
              "6+2 check=right");
    EXPECT_EQ(Sent("01 10 00 C6 00 02 04 42 C8 00 00 EA 53", rtu),
              "0+1 slave=1\n"
              "1+1 function=16 write registers\n"
              "2+2 register=198 on the line, 199 in the map\n"
              "4+2 quantity=2\n"
              "6+1 byte count=4\n"
              "7+4 data=42 C8 00 00, as floats 100\n"
              "11+2 check=right");
}

TEST(FrameFields, ModbusRtuReplies) {
    EXPECT_EQ(Received("01 03 08 42 C8 00 00 BF C0 00 00 7C 1A", rtu),
              "0+1 slave=1\n"
              "1+1 function=3 read holding registers\n"
              "2+1 byte count=8\n"
              "3+8 data=42 C8 00 00 BF C0 00 00, as floats 100 -1.5\n"
              "11+2 check=right");
    EXPECT_EQ(Received("01 83 02 C0 F1", rtu),
              "0+1 slave=1\n"
              "1+1 function=3 read holding registers, refused\n"
              "2+1 exception=2 illegal data address\n"
              "3+2 check=right");
    // Another bit, and a byte of noise behind.
    EXPECT_EQ(Received("01 83 03 C0 F1 FF", rtu),
              "0+1 slave=1\n"
              "1+1 function=3 read holding registers, refused\n"
              "2+1 exception=3 illegal data value\n"
              "3+2 check=wrong, 01 31 would be right\n"
              "5+1 not recognised=FF");
    EXPECT_EQ(Received("01 03 08 42 C8 00", rtu),
              "0+1 slave=1\n"
              "1+1 function=3 read holding registers\n"
              "2+1 byte count=8\n"
              "3+3 cut short=data is missing");
    EXPECT_EQ(Received("01 83 02 C0", rtu),
              "0+1 slave=1\n"
              "1+1 function=3 read holding registers, refused\n"
              "2+1 exception=2 illegal data address\n"
              "3+1 cut short=check is missing");
    // The request comes back in front of the answer; of a write the answer is the request.
    ExpectFields(Received("01 03 00 64 00 0A 84 12 01 83 02 C0 F1", rtu, "01 03 00 64 00 0A 84 12"),
                 "0+8 echo=the request, given back by the line\n8+1 slave=1");
    ExpectFields(Received("01 05 00 04 FF 00 CD FB", rtu, "01 05 00 04 FF 00 CD FB"), "0+1 slave=1");
    EXPECT_EQ(Received("F3 91 FF", rtu), "0+3 not recognised=F3 91 FF");
}

// The check is 100 hex less the sum of the bytes: 72 hex for the first, F8 for the second, which leaves one digit, and
// 100 for the third, which this master sends as it is.
TEST(FrameFields, ModbusAscii) {
    EXPECT_EQ(Named(":01030064000A8E\r\n", ascii, Direction::TX),
              "0+1 start=:\n"
              "1+2 slave=1\n"
              "3+2 function=3 read holding registers\n"
              "5+4 register=100 on the line, 101 in the map\n"
              "9+4 quantity=10\n"
              "13+2 check=right\n"
              "15+2 end=CR LF");
    EXPECT_EQ(Named(":010300F400008\r\n", ascii, Direction::TX),
              "0+1 start=:\n"
              "1+2 slave=1\n"
              "3+2 function=3 read holding registers\n"
              "5+4 register=244 on the line, 245 in the map\n"
              "9+4 quantity=0\n"
              "13+1 check=right\n"
              "14+2 end=CR LF");
    ExpectFields(Named(":010300FC0000100\r\n", ascii, Direction::TX), "13+3 check=right\n16+2 end=CR LF");
    EXPECT_EQ(Named("\xFF:0183027B\r\n", ascii, Direction::RX),
              "0+1 not recognised=FF\n"
              "1+1 start=:\n"
              "2+2 slave=1\n"
              "4+2 function=3 read holding registers, refused\n"
              "6+2 exception=2 illegal data address\n"
              "8+2 check=wrong, 7A would be right\n"
              "10+2 end=CR LF");
    EXPECT_EQ(Named(":01030442C8", ascii, Direction::RX),
              "0+1 start=:\n"
              "1+2 slave=1\n"
              "3+2 function=3 read holding registers\n"
              "5+2 byte count=4\n"
              "7+4 cut short=data is missing");
}

TEST(FrameFields, BsapLocalMessages) {
    EXPECT_EQ(Sent("10 02 01 10 10 85 10 10 10 03 36 6A", bsap),
              "0+2 start=DLE STX\n"
              "2+1 address=1\n"
              "3+2 link sequence=16\n"
              "5+1 message=poll\n"
              "6+2 argument=10\n"
              "8+2 end=DLE ETX\n"
              "10+2 check=right");
    EXPECT_EQ(Sent("10 02 01 05 8B 05 10 03 F2 3D", bsap),
              "0+2 start=DLE STX\n"
              "2+1 address=1\n"
              "3+1 link sequence=5\n"
              "4+1 message=acknowledge\n"
              "5+1 acknowledged sequence=5\n"
              "6+2 end=DLE ETX\n"
              "8+2 check=wrong, F2 3C would be right");
    ExpectFields(Sent("10 02 10 10 03 85 10 10 10 03 AA AA", bsap),
                 "2+2 address=16\n"
                 "4+1 link sequence=3\n"
                 "5+1 message=poll");
}

TEST(FrameFields, BsapRequests) {
    const std::string head =
        "0+2 start=DLE STX\n"
        "2+1 address=1\n";
    const auto sent = [&](const char* hex) {
        const std::string named = Sent(hex, bsap);
        EXPECT_EQ(named.substr(0, head.size()), head);
        EXPECT_TRUE(named.ends_with("check=right")) << named;
        const std::size_t from = named.find('\n', named.find("message=application"));
        return named.substr(from + 1, named.find("end=DLE ETX") - from - 1);
    };
    // The password is counted, not shown.
    EXPECT_EQ(sent("10 02 01 02 A0 12 00 0B 00 70 05 01 34 38 32 39 31 33 00 10 03 37 4E"),
              "5+2 application sequence=12 00 (decimal)\n"
              "7+2 fixed=0B 00\n"
              "9+3 function=sign-on\n"
              "12+7 password=6 characters\n"
              "19+2 ");
    EXPECT_EQ(sent("10 02 01 03 A0 04 00 0B 00 04 02 01 FF 11 23 4F 4E 2E 2E 00 10 03 49 B6"),
              "5+2 application sequence=4\n"
              "7+2 fixed=0B 00\n"
              "9+5 function=load version\n"
              "14+6 signal=#ON..\n"
              "20+2 ");
    EXPECT_EQ(sent("10 02 01 05 A0 00 08 0B 00 0D 01 F0 12 34 FF 36 0F 00 10 03 CC 77"),
              "5+2 application sequence=8\n"
              "7+2 fixed=0B 00\n"
              "9+1 function=next of a list\n"
              "10+2 field set=F0, with units\n"
              "12+2 load version=18 52\n"
              "14+1 fixed=FF\n"
              "15+1 list=54\n"
              "16+2 goes on=behind 15\n"
              "18+2 ");
    EXPECT_EQ(sent("10 02 01 06 A0 00 10 10 0B 00 0C 05 F9 01 12 34 FF 36 10 03 CA 9D"),
              "5+3 application sequence=16\n"
              "8+2 fixed=0B 00\n"
              "10+1 function=first of a list\n"
              "11+3 field set=F9, with names\n"
              "14+2 load version=18 52\n"
              "16+1 fixed=FF\n"
              "17+1 list=54\n"
              "18+2 ");
    EXPECT_EQ(sent("10 02 01 07 A0 12 00 0B 00 80 12 34 FF 01 00 01 0B 00 00 C8 42 10 03 F3 A2"),
              "5+2 application sequence=18\n"
              "7+2 fixed=0B 00\n"
              "9+1 function=write values\n"
              "10+2 load version=18 52\n"
              "12+1 fixed=FF\n"
              "13+1 count=1\n"
              "14+2 signal=256\n"
              "16+1 value kind=analog\n"
              "17+4 value=100\n"
              "21+2 ");
    ExpectFields(sent("10 02 01 08 A0 14 00 0B 00 80 12 34 FF 01 10 10 00 09 10 03 98 5F"),
                 "14+3 signal=16\n"
                 "17+1 value=on");
    ExpectFields(sent("10 02 01 09 A0 00 16 0B 00 00 05 F8 01 12 34 FF 01 2C 01 10 03 E0 50"), "17+2 signal=300");
    ExpectFields(sent("10 02 01 0B A0 1A 00 0B 00 70 07 07 02 00 10 10 01 04 10 03 D8 3B"),
                 "9+3 function=archive records\n12+6 data=02 00 10 01 04");
    ExpectFields(sent("10 02 01 02 A0 04 00 0B 00 70 07 02 02 00 00 00 10 03 9C 7E"),
                 "9+3 function=archive fields\n12+4 data=02 00 00 00");
}

TEST(FrameFields, BsapReplies) {
    constexpr const char* listRequest = "10 02 01 04 A0 00 06 0B 00 0C 01 F0 12 34 FF 36 10 03 0C 0D";
    constexpr const char* versionRequest = "10 02 01 03 A0 04 00 0B 00 04 02 01 FF 11 23 4F 4E 2E 2E 00 10 03 49 B6";
    ExpectFields(Received("10 02 00 01 00 86 01 00 01 10 03 00 00", bsap),
                 "0+2 start=DLE STX\n"
                 "2+1 address=0\n"
                 "3+1 link sequence=1\n"
                 "4+2 acknowledgement=00 86\n"
                 "6+1 station=1\n"
                 "7+1 status=0\n"
                 "8+1 rest=01");
    ExpectFields(Received("10 02 00 01 86 10 10 02 01 10 03 00 00", cw),
                 "4+1 acknowledgement=86\n"
                 "5+2 station=16\n"
                 "7+1 status=2\n"
                 "8+1 rest=01");
    constexpr const char* list =
        "10 02 00 01 00 0B 00 06 A0 00 00 00 00 10 10 00 02 00 00 C8 42 42 41 52 00 00 00 07 01 10 03 00 00";
    ExpectFields(Received(list, bsap, listRequest),
                 "4+9 head of the answer=00 0B 00 06 A0 00 00 00 ... (9 bytes)\n"
                 "13+3 list goes on=behind 16\n"
                 "16+13 first record=type 2, 13 bytes of records");
    ExpectFields(Received(list, bsap, versionRequest), "13+3 load version=16 0");
    // A sequence that looks like what stands behind it.
    ExpectFields(Received(list, bsap, "10 02 01 04 A0 0B 00 0B 00 0C 01 F0 12 34 FF 36 10 03 00 00"),
                 "13+3 list goes on=behind 16");
    ExpectFields(Received(list, bsap), "13+16 data=10 00 02 00 00 C8 42 42 ... (15 bytes)");
    ExpectFields(Received("10 02 00 01 0B 00 06 A0 00 00 00 00 00 00 02 00 00 C8 42 10 03 00 00", cw, listRequest),
                 "12+2 list goes on=0, this was the last\n14+5 first record=type 2, 5 bytes of records");
    // A leading byte, behind noise; then the short head.
    ExpectFields(Received("10 FF 10 02 00 01 86 10 10 02 01 10 03 00 00", bsap),
                 "0+1 not recognised=10\n"
                 "1+1 leading byte=FF\n"
                 "2+2 start=DLE STX\n"
                 "4+1 address=0\n"
                 "5+1 link sequence=1\n"
                 "6+1 acknowledgement=86\n"
                 "7+2 station=16\n"
                 "9+1 status=2\n"
                 "10+1 rest=01");
    ExpectFields(
        Received("00 10 02 00 04 0B 00 06 A0 00 00 00 00 10 10 00 02 00 00 C8 42 10 03 00 00", bsap, listRequest),
        "0+1 leading byte=00\n"
        "1+2 start=DLE STX\n"
        "3+1 address=0\n"
        "4+1 link sequence=4\n"
        "5+8 head of the answer=0B 00 06 A0 00 00 00 00\n"
        "13+3 list goes on=behind 16");
    // Noise ahead of a byte inside the head.
    ExpectFields(Received(("FF " + std::string(list)).c_str(), bsap, listRequest),
                 "0+1 not recognised=FF\n"
                 "1+2 start=DLE STX");
    EXPECT_EQ(Received("FF FF 10 02 00 01 00", cw),
              "0+2 not recognised=FF FF\n"
              "2+2 start=DLE STX\n"
              "4+1 address=0\n"
              "5+1 link sequence=1\n"
              "6+1 cut short=head of the answer is missing");
}

TEST(FrameFields, OnlyWhatIsAskedIsARequest) {
    EXPECT_FALSE(IsRequest(Bytes("10 02 01 01 85 10 10 10 03 2C B5"), bsap));
    EXPECT_FALSE(IsRequest(Bytes("10 02 10 10 10 8B 10 10 10 03 00 00"), bsap));
    EXPECT_TRUE(IsRequest(Bytes("10 02 01 04 A0 00 06 0B 00 0C 01 F0 12 34 FF 36 10 03 0C 0D"), bsap));
    EXPECT_TRUE(IsRequest(Bytes("01 03 00 64 00 0A 84 12"), rtu));
    EXPECT_FALSE(IsRequest("ath\r", rtu));
}

TEST(FrameFields, Quantum) {
    constexpr const char* request = "02 30 37 41 30 33 00 F3 03";
    EXPECT_EQ(Sent("02 30 37 41 30 32 00 F4 03", quantum),
              "0+1 start=STX\n"
              "1+2 station=07\n"
              "3+1 command=A\n"
              "4+2 message=02\n"
              "6+1 fill=00\n"
              "7+1 checksum=right\n"
              "8+1 end=ETX");
    EXPECT_EQ(Sent("02 30 37", quantum),
              "0+1 start=STX\n"
              "1+2 station=07\n"
              "3+0 cut short=command is missing");
    std::string reply =
        "\x02"
        "07A03               ";
    ASSERT_EQ(reply.size(), 21U);
    reply += " 280226120000 20,5         1,2345000E+03";
    const std::string named = Named(reply, quantum, Direction::RX, Bytes(request));
    EXPECT_EQ(named,
              "0+22 head=\\x0207A03                \n"
              "22+13 DD MM YY HH MM SS=280226120000 = 280226120000\n"
              "35+13 Temperature=20,5 = 20.5\n"
              "48+13 Pressure=1,2345000E+03 = 1234.5\n"
              "61+0 cut short=Density Used is missing");
    ExpectFields(Named(reply, quantum, Direction::RX), "49+12 cut short=value 3 is missing");
}

TEST(FrameFields, ModemDialogue) {
    EXPECT_EQ(Named("ath\r", rtu, Direction::TX), "0+4 modem command=ath");
    EXPECT_EQ(Named("+++", bsap, Direction::TX), "0+3 modem command=+++");
    EXPECT_EQ(Named("atdt5551\r\r\nCONNECT 9600\r\n", quantum, Direction::RX),
              "0+11 modem command=atdt5551\n"
              "11+14 modem answer=CONNECT 9600");
    ExpectFields(Named("\r\nNO CARRIER\r\n\x10\x02", bsap, Direction::RX), "14+2 start=DLE STX");
    EXPECT_TRUE(FrameFields("", rtu, Direction::RX).empty());
}

TEST(FrameFields, TheTableIsAligned) {
    EXPECT_EQ(FieldTable(FrameFields(Bytes("01 83 02"), rtu, Direction::RX)),
              "1    slave      1\n"
              "2    function   3 read holding registers, refused\n"
              "3    exception  2 illegal data address\n"
              "end  cut short  check is missing");
}
