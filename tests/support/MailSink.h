#pragma once

#include <gtest/gtest.h>

#include "support/ChildProcess.h"
#include "support/ScratchDesk.h"

namespace support {

// A mail server of a test's own, and what has come to it.
class MailSink {
    ScratchDirectory received_;
    ChildProcess server_{{"/usr/bin/python3", SMTP_SINK, received_.path.string()}};

  public:
    std::string Url() {
        EXPECT_TRUE(server_.Printed("\n")) << server_.Said();
        return "smtp://127.0.0.1:" + server_.Said().substr(10, server_.Said().find('\n') - 10);
    }
    bool Nothing() const { return std::filesystem::is_empty(received_.path); }

    // What has come as mail number so and so, from 1: "eml", "subject", "text", "attachment", "name", "defects".
    std::string Received(int number, const std::string& ending = "eml") const {
        return FileText(received_.path / (std::to_string(number) + "." + ending));
    }
};

}  // namespace support
