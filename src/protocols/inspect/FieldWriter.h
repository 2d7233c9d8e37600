#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "protocols/inspect/FrameFields.h"

// How the protocols name the fields of a line. For FrameFields alone.
namespace protocols {

// Printable ASCII and line ends, and not line ends alone.
bool IsText(std::string_view bytes);
// "2A"
std::string HexByte(int byte);
// "42 C8 00 00 BF C0 00 00 ... (124 bytes)"
std::string ShortHex(std::string_view bytes);
// Text that may hold other bytes: printable ASCII stays, others become "\x0D".
std::string Readable(std::string_view bytes);
// "right", or "wrong" and what would be.
std::string CheckWord(bool right, const std::string& expected);

// The bytes that a frame carries and where each of them, and the end, stands on the line. They differ from the line's
// bytes where a protocol doubles some or writes each as two digits.
struct Body {
    std::string bytes;
    std::vector<std::size_t> at;  // one more than bytes
};

// A part of the line as it stands there.
Body PlainBody(std::string_view line, std::size_t from, std::size_t length);

// Names the bytes of a body from its first on. A field that is longer than what is left takes what is left, as cut
// short; after that nothing more is named.
class BodyFields {
  public:
    BodyFields(const Body& body, std::vector<FrameField>& fields) : body_(body), fields_(fields) {}

    std::size_t Taken() const { return next_; }
    std::size_t Left() const { return body_.bytes.size() - next_; }
    bool CutShort() const { return cutShort_; }
    // The byte `ahead` of the next one; -1 behind the end.
    int Peek(std::size_t ahead = 0) const;
    std::string_view PeekAll() const { return std::string_view(body_.bytes).substr(next_); }
    // A number from the next two bytes; what is missing counts as 0.
    int HighLow() const { return std::max(Peek(0), 0) * 256 + std::max(Peek(1), 0); }
    int LowHigh() const { return std::max(Peek(1), 0) * 256 + std::max(Peek(0), 0); }

    void Take(std::size_t count, const std::string& name, const std::string& value);
    void TakeByte(const std::string& name) { Take(1, name, std::to_string(std::max(Peek(), 0))); }
    // Up to and with the 00 that closes a text. `value` stands for a text that is not for everybody's eyes.
    void TakeText(const std::string& name, const std::string& value = {});
    void TakeRest(const std::string& name) { Take(Left(), name, ShortHex(PeekAll())); }

  private:
    const Body& body_;
    std::vector<FrameField>& fields_;
    std::size_t next_ = 0;
    bool cutShort_ = false;
};

// One line on its way through a protocol: what is still to be named of it.
struct Naming {
    std::string_view line;
    Direction direction;
    std::string_view request;
    std::vector<FrameField> fields{};
    std::size_t next = 0;
    bool lowWordFirst = false;

    std::string_view Rest() const { return line.substr(next); }
    // Names the last bytes, if any are left of the frame that lacks this.
    void TakeCut(const std::string& missing) { Take(line.size() - next, "cut short", missing + " is missing"); }
    void Take(std::size_t count, const std::string& name, const std::string& value);
    // What is no frame: words of a modem, or bytes that nobody knows.
    void TakeUnknown(std::size_t count);
};

// Each names what it knows from the next byte on, and leaves the rest.
void NameModbusRtu(Naming& naming);
void NameModbusAscii(Naming& naming);
void NameModbusTcp(Naming& naming);
void NameBsap(Naming& naming, bool isCW);
void NameQuantum(Naming& naming);

// The third byte of a BSAP frame's body, its message; -1 where there is none.
int BsapMessage(std::string_view sent);

}  // namespace protocols
