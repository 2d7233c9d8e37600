#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <fstream>
#include <string>

#include "fieldsim/PtyPorts.h"
#include "tests/support/ScratchDesk.h"

namespace fieldsim {
namespace {

struct Upper final : Device {
    int closed = 0;
    std::vector<Answer> Receive(std::string_view bytes, const Moment&) override {
        return {{"<" + std::string(bytes) + ">", 5}};
    }
    void LineClosed() override { ++closed; }
};

struct PtyPortsTest : testing::Test {
    support::ScratchDirectory scratch;
    Upper device;
    std::filesystem::path link = scratch.path / "ports" / "COM1";

    static std::string Ask(PtyPorts& ports, int file, const std::string& bytes) {
        EXPECT_EQ(write(file, bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
        std::string answer;
        for (int turn = 0; turn < 100 && answer.size() < bytes.size() + 2; ++turn) {
            ports.Turn(10);
            std::array<char, 64> read{};
            const ssize_t count = ::read(file, read.data(), read.size());
            answer.append(read.data(), count > 0 ? static_cast<std::size_t>(count) : 0);
        }
        return answer;
    }
};

TEST_F(PtyPortsTest, EveryByteGoesThroughAsItIsHoweverOftenThePortIsOpened) {
    const std::string bytes("\x00\x03\x04\r\n\x11\x13\x7F\xFF\x1A", 10);
    {
        PtyPorts ports;
        ASSERT_EQ(ports.Open(link, device), "");
        for (int session = 1; session <= 3; ++session) {
            const int file = open(link.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK);
            ASSERT_GE(file, 0);
            EXPECT_EQ(Ask(ports, file, bytes), "<" + bytes + ">");
            close(file);
            ports.Turn(10);
            EXPECT_EQ(device.closed, session);
        }
        EXPECT_TRUE(std::filesystem::is_symlink(link));
    }
    EXPECT_FALSE(std::filesystem::is_symlink(link));
}

TEST_F(PtyPortsTest, ReplacesALinkAndNothingElse) {
    std::filesystem::create_directory(link.parent_path());
    std::filesystem::create_symlink("/nowhere", link);
    PtyPorts ports;
    EXPECT_EQ(ports.Open(link, device), "");
    const std::filesystem::path file = scratch.path / "real";
    std::ofstream(file) << "kept";
    EXPECT_NE(ports.Open(file, device), "");
    EXPECT_EQ(support::FileText(file), "kept");
}

}  // namespace
}  // namespace fieldsim
