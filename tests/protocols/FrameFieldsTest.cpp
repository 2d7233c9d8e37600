#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "protocols/inspect/FrameFields.h"
#include "support/Hex.h"

using namespace protocols;
using support::Bytes;
using testing::HasSubstr;

namespace {

const Wire rtu{core::Protocol::Modbus, core::Framing::Rtu};
const Wire ascii{core::Protocol::Modbus, core::Framing::Ascii};
const Wire tcp{core::Protocol::Modbus, core::Framing::Tcp};
const Wire lowFirst{core::Protocol::Modbus, core::Framing::Tcp, false, true};
const Wire bsap{core::Protocol::Bsap};
const Wire cw{core::Protocol::Bsap, core::Framing::Rtu, true};
const Wire quantum{core::Protocol::Quantum};
constexpr auto sent = Direction::TX;
constexpr auto received = Direction::RX;

// "1 slave=1; 2 check=right": length, name and value of each field. Every byte is to be in one of them.
std::string Named(std::string_view bytes, const Wire& wire, Direction direction, std::string_view request = {}) {
    std::string text;
    std::size_t next = 0;
    for (const FrameField& field : FrameFields(bytes, wire, direction, request)) {
        EXPECT_EQ(field.offset, next) << field.name;
        next = field.offset + field.length;
        text += (text.empty() ? "" : "; ") + std::to_string(field.length) + " " + field.name + "=" + field.value;
    }
    EXPECT_EQ(next, bytes.size()) << text;
    return text;
}

struct Row {
    const Wire& wire;
    Direction direction;
    const char* frame;
    const char* fields;  // or some of them, one behind the other
    const char* request = "";
};

void ExpectNamed(const std::vector<Row>& rows) {
    for (const Row& row : rows) {
        EXPECT_THAT(Named(Bytes(row.frame), row.wire, row.direction, Bytes(row.request)), HasSubstr(row.fields))
            << row.frame;
    }
}

}  // namespace

TEST(FrameFields, ModbusRtu) {
    ExpectNamed({
        {rtu, sent, "01 03 00 64 00 0A 84 12",
         "1 slave=1; 1 function=3 read holding registers; 2 register=100 on the line, 101 in the map; 2 quantity=10; "
         "2 check=right"},
        {rtu, sent, "01 06 00 09 FF FE 99 B8", "2 register=9 on the line, 10 in the map; 2 value=65534; 2 check="},
        {rtu, sent, "01 10 00 C6 00 02 04 42 C8 00 00 EA 53",
         "1 function=16 write registers; 2 register=198 on the line, 199 in the map; 2 quantity=2; 1 byte count=4; "
         "4 data=42 C8 00 00, as floats 100; 2 check=right"},
        {rtu, received, "01 03 08 42 C8 00 00 BF C0 00 00 7C 1A",
         "1 slave=1; 1 function=3 read holding registers; 1 byte count=8; "
         "8 data=42 C8 00 00 BF C0 00 00, as floats 100 -1.5; 2 check=right"},
        {rtu, received, "01 01 01 A5 00 00", "1 function=1 read coils; 1 byte count=1; 1 data=A5; 2 check=wrong, "},
        {rtu, received, "01 10 00 C6 00 02 A1 F5",
         "1 function=16 write registers; 2 register=198 on the line, 199 in the map; 2 quantity=2; 2 check=right"},
        // Another bit, and a byte of noise behind.
        {rtu, received, "01 83 03 C0 F1 FF",
         "1 exception=3 illegal data value; 2 check=wrong, 01 31 would be right; 1 not recognised=FF"},
        {rtu, received, "01 03 08 42 C8 00", "1 byte count=8; 3 cut short=data is missing"},
        {rtu, received, "F3 91 FF", "3 not recognised=F3 91 FF"},
        // The request comes back in front of the answer; of a write the answer is the request.
        {rtu, received, "01 03 00 64 00 0A 84 12 01 83 02 C0 F1",
         "8 echo=the request, given back by the line; 1 slave=1", "01 03 00 64 00 0A 84 12"},
        {rtu, received, "01 05 00 04 FF 00 CD FB", "1 slave=1; 1 function=5", "01 05 00 04 FF 00 CD FB"},
    });
}

TEST(FrameFields, ModbusTcp) {
    ExpectNamed({
        {tcp, sent, "15 01 00 00 00 06 07 03 00 04 00 01",
         "2 transaction=5377; 2 protocol=0; 2 length=6; 1 slave=7; 1 function=3 read holding registers; "
         "2 register=4 on the line, 5 in the map; 2 quantity=1"},
        // A late reply in front, a part of one behind.
        {lowFirst, received, "15 01 00 00 00 03 07 83 02 15 02 00 00 00 07 07 03 04 00 00 42 C8 15 03 00 00",
         "1 function=3 read holding registers, refused; 1 exception=2 illegal data address; 2 transaction=5378"},
        {lowFirst, received, "15 02 00 00 00 07 07 03 04 00 00 42 C8 15 03 00 00",
         "4 data=00 00 42 C8, as floats 100; 4 not recognised=15 03 00 00"},
        {tcp, received, "15 02 00 00 00 07 07 03 04 42 C8", "2 cut short=data is missing"},
        {tcp, received, "15 02 00 01 00 07 07 03 04 42 C8", "11 not recognised=15 02 00 01 00 07 07 03 ... (11 bytes)"},
    });
}

// The check is 100 hex less the sum of the bytes: 72 hex for the first, F8 for the second, which leaves one digit, and
// 100 for the third, which this master sends as it is.
TEST(FrameFields, ModbusAscii) {
    const std::tuple<Direction, const char*, const char*> rows[] = {
        {sent, ":01030064000A8E\r\n",
         "1 start=:; 2 slave=1; 2 function=3 read holding registers; 4 register=100 on the line, 101 in the map; "
         "4 quantity=10; 2 check=right; 2 end=CR LF"},
        {sent, ":010300F400008\r\n", "4 quantity=0; 1 check=right; 2 end=CR LF"},
        {sent, ":010300FC0000100\r\n", "4 quantity=0; 3 check=right; 2 end=CR LF"},
        {received, "\xFF:0183027B\r\n",
         "1 not recognised=FF; 1 start=:; 2 slave=1; 2 function=3 read holding registers, refused; "
         "2 exception=2 illegal data address; 2 check=wrong, 7A would be right; 2 end=CR LF"},
        {received, ":01030442C8", "2 byte count=4; 4 cut short=data is missing"},
    };
    for (const auto& [direction, frame, fields] : rows) {
        EXPECT_THAT(Named(frame, ascii, direction), HasSubstr(fields));
    }
}

TEST(FrameFields, BsapRequests) {
    ExpectNamed({
        {bsap, sent, "10 02 01 10 10 85 10 10 10 03 36 6A",
         "2 start=DLE STX; 1 address=1; 2 link sequence=16; 1 message=poll; 2 argument=10; 2 end=DLE ETX; "
         "2 check=right"},
        {bsap, sent, "10 02 10 10 05 8B 05 10 03 F2 3D",
         "2 address=16; 1 link sequence=5; 1 message=acknowledge; 1 acknowledged sequence=5; 2 end=DLE ETX; "
         "2 check=wrong, "},
        // The password is counted, not shown.
        {bsap, sent, "10 02 01 02 A0 12 00 0B 00 70 05 01 34 38 32 39 31 33 00 10 03 37 4E",
         "1 message=application; 2 application sequence=12 00 (decimal); 2 fixed=0B 00; 3 function=sign-on; "
         "7 password=6 characters; 2 end=DLE ETX; 2 check=right"},
        {bsap, sent, "10 02 01 05 A0 00 08 0B 00 0D 01 F0 12 34 FF 36 0F 00 10 03 CC 77",
         "2 application sequence=8; 2 fixed=0B 00; 1 function=next of a list; 2 field set=F0, with units; "
         "2 load version=18 52; 1 fixed=FF; 1 list=54; 2 goes on=behind 15; 2 end"},
        {bsap, sent, "10 02 01 06 A0 00 10 10 0B 00 0C 05 F9 01 12 34 FF 36 10 03 CA 9D",
         "3 application sequence=16; 2 fixed=0B 00; 1 function=first of a list; 3 field set=F9, with names; "
         "2 load version=18 52; 1 fixed=FF; 1 list=54; 2 end"},
        {bsap, sent, "10 02 01 07 A0 12 00 0B 00 80 12 34 FF 01 00 01 0B 00 00 C8 42 10 03 F3 A2",
         "1 function=write values; 2 load version=18 52; 1 fixed=FF; 1 count=1; 2 signal=256; 1 value kind=analog; "
         "4 value=100; 2 end"},
        {bsap, sent, "10 02 01 01 A0 00 02 0B 00 84 FF 01 41 2E 31 00 0A 10 03 78 D1",
         "2 application sequence=2; 2 fixed=0B 00; 3 function=write by name; 4 signal=A.1; 1 value=off; 2 end"},
        {bsap, sent, "10 02 01 0B A0 1A 00 0B 00 70 07 07 02 00 10 10 01 04 10 03 D8 3B",
         "3 function=archive records; 6 data=02 00 10 01 04; 2 end"},
    });
}

TEST(FrameFields, BsapReplies) {
    constexpr const char* listRequest = "10 02 01 04 A0 00 06 0B 00 0C 01 F0 12 34 FF 36 10 03 0C 0D";
    constexpr const char* versionRequest = "10 02 01 03 A0 04 00 0B 00 04 02 01 FF 11 23 4F 4E 2E 2E 00 10 03 49 B6";
    constexpr const char* list =
        "10 02 00 01 00 0B 00 06 A0 00 00 00 00 10 10 00 02 00 00 C8 42 42 41 52 00 00 00 07 01 10 03 00 00";
    ExpectNamed({
        {bsap, received, "10 02 00 01 00 86 01 00 01 10 03 00 00",
         "2 start=DLE STX; 1 address=0; 1 link sequence=1; 2 acknowledgement=00 86; 1 station=1; 1 status=0; 1 "
         "rest=01"},
        {cw, received, "10 02 00 01 86 10 10 02 01 10 03 00 00",
         "1 acknowledgement=86; 2 station=16; 1 status=2; 1 rest=01"},
        {bsap, received, list,
         "9 head of the answer=00 0B 00 06 A0 00 00 00 ... (9 bytes); 3 list goes on=behind 16; "
         "13 first record=type 2, 13 bytes of records",
         listRequest},
        {bsap, received, list, "3 load version=16 0", versionRequest},
        {bsap, received, list, "16 data=10 00 02 00 00 C8 42 42 ... (15 bytes)"},
        // A sequence that looks like what stands behind it.
        {bsap, received, list, "3 list goes on=behind 16",
         "10 02 01 04 A0 0B 00 0B 00 0C 01 F0 12 34 FF 36 10 03 00 00"},
        {cw, received, "10 02 00 01 0B 00 06 A0 00 00 00 00 00 00 02 00 00 C8 42 10 03 00 00",
         "2 list goes on=0, this was the last; 5 first record=type 2, 5 bytes of records", listRequest},
        // A leading byte, behind noise; then the short head.
        {bsap, received, "10 FF 10 02 00 01 86 10 10 02 01 10 03 00 00",
         "1 not recognised=10; 1 leading byte=FF; 2 start=DLE STX; 1 address=0; 1 link sequence=1; "
         "1 acknowledgement=86; 2 station=16; 1 status=2; 1 rest=01"},
        {bsap, received, "00 10 02 00 04 0B 00 06 A0 00 00 00 00 10 10 00 02 00 00 C8 42 10 03 00 00",
         "1 leading byte=00; 2 start=DLE STX; 1 address=0; 1 link sequence=4; "
         "8 head of the answer=0B 00 06 A0 00 00 00 00; 3 list goes on=behind 16",
         listRequest},
        {cw, received, "FF FF 10 02 00 01 00",
         "2 not recognised=FF FF; 2 start=DLE STX; 1 address=0; 1 link sequence=1; "
         "1 cut short=head of the answer is missing"},
    });
}

TEST(FrameFields, Quantum) {
    ExpectNamed({
        {quantum, sent, "02 30 37 41 30 32 00 F4 03",
         "1 start=STX; 2 station=07; 1 command=A; 2 message=02; 1 fill=00; 1 checksum=right; 1 end=ETX"},
        {quantum, sent, "02 30 37", "1 start=STX; 2 station=07; 0 cut short=command is missing"},
    });
    const std::string reply =
        "\x02"
        "07A03                280226120000 20,5         1,2345000E+03";
    EXPECT_EQ(Named(reply, quantum, received, Bytes("02 30 37 41 30 33 00 F3 03")),
              "22 head=\\x0207A03                ; 13 DD MM YY HH MM SS=280226120000 = 280226120000; "
              "13 Temperature=20,5 = 20.5; 13 Pressure=1,2345000E+03 = 1234.5; 0 cut short=Density Used is missing");
    EXPECT_THAT(Named(reply, quantum, received), HasSubstr("12 cut short=value 3 is missing"));
}

TEST(FrameFields, ModemDialogue) {
    EXPECT_EQ(Named("ath\r", ascii, sent), "4 modem command=ath");
    EXPECT_EQ(Named("atdt5551\r\r\nCONNECT 9600:V34\r\n", quantum, received),
              "11 modem command=atdt5551; 18 modem answer=CONNECT 9600:V34");
    EXPECT_THAT(Named("\r\nNO CARRIER\r\n\x10\x02", bsap, received),
                HasSubstr("modem answer=NO CARRIER; 1 leading byte=0A; 2 start=DLE STX; "));
    EXPECT_EQ(Named("", rtu, received), "");

    EXPECT_FALSE(IsRequest("ath\r", ascii));
    EXPECT_FALSE(IsRequest(Bytes("10 02 01 01 85 10 10 10 03 2C B5"), bsap)) << "a poll asks for nothing of its own";
    EXPECT_TRUE(IsRequest(Bytes("10 02 01 04 A0 00 06 0B 00 0C 01 F0 12 34 FF 36 10 03 0C 0D"), bsap));
    EXPECT_TRUE(IsRequest(Bytes("01 03 00 64 00 0A 84 12"), rtu));
}

TEST(FrameFields, TheTableIsAligned) {
    EXPECT_EQ(FieldTable(FrameFields(Bytes("01 83 02"), rtu, received)),
              "1    slave      1\n"
              "2    function   3 read holding registers, refused\n"
              "3    exception  2 illegal data address\n"
              "end  cut short  check is missing");
}
