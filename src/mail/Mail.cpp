#include "mail/Mail.h"

#include <fstream>
#include <iterator>
#include <stdexcept>

namespace mail {

namespace {

constexpr std::uintmax_t largestAttachment = 25U << 20U;

}  // namespace

std::string Sender(const MailServer& server, const MailMessage& message) {
    if (!server.sender.empty()) {
        return server.sender;
    }
    return !message.to.empty() ? message.to : !message.cc.empty() ? message.cc : message.bcc;
}

void Attach(MailMessage& message, const std::filesystem::path& file) {
    const std::string name = file.filename().string();
    std::error_code failure;
    // A pipe or a device would never come to its end.
    if (!std::filesystem::is_regular_file(file, failure)) {
        throw std::runtime_error(name + (std::filesystem::exists(file, failure) ? " is not a file" : " is not there"));
    }
    if (std::filesystem::file_size(file, failure) > largestAttachment) {
        throw std::runtime_error(name + " is larger than 25 MB, which no mail server takes");
    }
    std::ifstream in(file, std::ios::binary);
    std::string bytes{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    if (!in.is_open() || in.bad()) {
        throw std::runtime_error(name + " cannot be read");
    }
    message.attachmentName = name;
    message.attachment = std::move(bytes);
}

}  // namespace mail
