#pragma once

#include <deque>
#include <functional>
#include <string>
#include <vector>

#include "protocols/line/Line.h"

namespace support {

// A line on which the answers to the coming sends are laid down in advance, one for each, empty for silence.
// With `answer` set, that function makes them instead.
class ScriptedLine : public protocols::Line {
  public:
    std::vector<std::string> sent;
    std::deque<std::string> replies;
    std::function<std::string(const std::string& sent)> answer;
    bool canOpen = true;
    int port = 0;
    std::string settings;
    int opened = 0;

    bool PortOpen() const override { return open_; }
    bool PortOpen(bool open) override {
        open_ = open && canOpen;
        opened += open_ ? 1 : 0;
        waiting_.clear();
        return open_ == open;
    }
    std::string LastError() const override { return canOpen ? "" : "No such device"; }
    void CommPort(int number) override { port = number; }
    void Settings(const std::string& text) override { settings = text; }
    std::size_t InBufferCount() override { return waiting_.size(); }
    std::size_t OutBufferCount() override { return 0; }
    void ClearInBuffer() override { waiting_.clear(); }
    void ClearOutBuffer() override {}
    void Output(const std::string& bytes) override {
        if (!open_) {
            return;
        }
        sent.push_back(bytes);
        if (answer) {
            waiting_ += answer(bytes);
        } else if (!replies.empty()) {
            waiting_ += replies.front();
            replies.pop_front();
        }
    }
    std::string Input() override {
        std::string taken;
        taken.swap(waiting_);
        return taken;
    }

  private:
    bool open_ = false;
    std::string waiting_;
};

}  // namespace support
