#pragma once

#include <string>

// How a routine of the engine reaches the operator, whatever screen is in front.
namespace core {

class Feedback {
  public:
    virtual ~Feedback() = default;

    // The first panel of the status bar.
    virtual void Status(const std::string& text) = 0;

    // The same of the work on one of several lines, "COM3"; empty: its work is over.
    virtual void LineStatus(const std::string& line, const std::string& text) {
        static_cast<void>(line);
        if (!text.empty()) {
            Status(text);
        }
    }

    // A message box. Unattended work never waits for its answer: there it is shown without blocking and the text
    // goes to the error log as well.
    virtual void Box(const std::string& text) = 0;

    // Bytes went out ("TX") or came in ("RX"): the lamp of the screen in front, and the line in its panel.
    virtual void Lamp(const std::string& lamp, const std::string& bytes) {
        static_cast<void>(lamp);
        static_cast<void>(bytes);
    }
};

}  // namespace core
