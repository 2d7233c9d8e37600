#include "collection/SmtpTransport.h"

#include <curl/curl.h>
#include <sys/socket.h>

#include <array>
#include <ctime>
#include <memory>
#include <stdexcept>

namespace collection {

namespace {

constexpr double stepMs = 20;  // between two looks at the connection
constexpr long connectLimitMs = 15000;

// curl needs its global state before the first handle; the last transport's end is the program's.
void StartCurl() {
    static const CURLcode started = curl_global_init(CURL_GLOBAL_DEFAULT);
    if (started != CURLE_OK) {
        throw std::runtime_error(curl_easy_strerror(started));
    }
}

struct EasyEnd {
    void operator()(CURL* easy) const { curl_easy_cleanup(easy); }
};
struct MultiEnd {
    void operator()(CURLM* multi) const { curl_multi_cleanup(multi); }
};
struct MimeEnd {
    void operator()(curl_mime* mime) const { curl_mime_free(mime); }
};

// A list of texts that curl reads and does not own.
class TextList {
  public:
    TextList() = default;
    ~TextList() { curl_slist_free_all(list_); }
    TextList(const TextList&) = delete;
    TextList& operator=(const TextList&) = delete;

    void Add(const std::string& text) { list_ = curl_slist_append(list_, text.c_str()); }
    curl_slist* Get() const { return list_; }

  private:
    curl_slist* list_ = nullptr;
};

// A text that stands in a header: one line, whatever was typed.
std::string OneLine(const std::string& text) {
    std::string line;
    for (const char c : text) {
        line += static_cast<unsigned char>(c) < 0x20 ? ' ' : c;
    }
    return line;
}

// A header's text in plain characters, others as an encoded word.
std::string HeaderText(const std::string& text) {
    const std::string line = OneLine(text);
    bool plain = true;
    for (const char c : line) {
        plain = plain && static_cast<unsigned char>(c) < 0x7F;
    }
    if (plain) {
        return line;
    }
    constexpr std::size_t longestWord = 40;  // bytes in one encoded word, so that its line stays short
    std::string encoded;
    std::string word;
    const auto flush = [&] {
        encoded += (encoded.empty() ? "=?utf-8?Q?" : "\r\n =?utf-8?Q?") + word + "?=";
        word.clear();
    };
    for (const char c : line) {
        const auto byte = static_cast<unsigned char>(c);
        const bool startsCharacter = (byte & 0xC0) != 0x80;
        if (startsCharacter && word.size() >= longestWord) {
            flush();
        }
        if ((c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z')) {
            word += c;
        } else {
            word += std::string("=") + "0123456789ABCDEF"[byte >> 4] + "0123456789ABCDEF"[byte & 15];
        }
    }
    flush();
    return encoded;
}

// Now, as a mail's header has it, in the machine's zone.
std::string DateHeader() {
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    localtime_r(&now, &local);
    std::array<char, 64> text{};
    std::strftime(text.data(), text.size(), "%a, %d %b %Y %H:%M:%S %z", &local);
    return text.data();
}

std::string Bracketed(const std::string& address) {
    return "<" + OneLine(address) + ">";
}

class Delivery {
  public:
    Delivery(const MailMessage& message, const MailServer& server)
        : easy_(curl_easy_init()), multi_(curl_multi_init()), mime_(curl_mime_init(easy_.get())) {
        if (!easy_ || !multi_ || !mime_) {
            throw std::runtime_error("no memory for the mail");
        }
        Address(message);
        Fill(message);
        Option(CURLOPT_URL, server.url.c_str());
        Option(CURLOPT_PROTOCOLS_STR, "smtp,smtps");
        if (!server.user.empty()) {
            Option(CURLOPT_USERNAME, server.user.c_str());
            Option(CURLOPT_PASSWORD, server.password.c_str());
            // The password does not go over the network in the clear.
            Option(CURLOPT_USE_SSL, static_cast<long>(CURLUSESSL_ALL));
        }
        Option(CURLOPT_CONNECTTIMEOUT_MS, connectLimitMs);
        Option(CURLOPT_NOSIGNAL, 1L);
        Option(CURLOPT_ERRORBUFFER, words_.data());
        Option(CURLOPT_SOCKOPTFUNCTION, &Delivery::Opened);
        Option(CURLOPT_SOCKOPTDATA, this);
        curl_multi_add_handle(multi_.get(), easy_.get());
    }
    ~Delivery() {
        StopListening();
        curl_multi_remove_handle(multi_.get(), easy_.get());
    }
    Delivery(const Delivery&) = delete;
    Delivery& operator=(const Delivery&) = delete;

    MailOutcome Run(core::Clock& clock, const std::function<bool()>& ended) {
        const std::uint32_t start = clock.Milliseconds();
        for (;;) {
            int running = 0;
            curl_multi_perform(multi_.get(), &running);
            if (running == 0) {
                return Result();
            }
            if (ended()) {
                return {false, "the program ends"};
            }
            if (clock.Milliseconds() - start >= SmtpTransport::timeLimitMs) {
                return {false, "the mail server takes too long"};
            }
            // Nothing is lost when the answer is there at once; a clock that does not really wait is kept in step.
            curl_multi_poll(multi_.get(), nullptr, 0, 1, nullptr);
            clock.WaitMs(stepMs, ended);
        }
    }

  private:
    template <typename Setting>
    void Option(CURLoption option, Setting setting) {
        const CURLcode code = curl_easy_setopt(easy_.get(), option, setting);
        if (code != CURLE_OK) {
            throw std::runtime_error(curl_easy_strerror(code));
        }
    }

    // At the end of a connection curl says QUIT and waits up to two minutes for the answer, with the whole program. The
    // mail's fate is known by then: with nothing more to hear the wait is over at once.
    void StopListening() const {
        if (connection_ != CURL_SOCKET_BAD) {
            shutdown(connection_, SHUT_RD);
        }
    }
    static int Opened(void* delivery, curl_socket_t connection, curlsocktype) {
        static_cast<Delivery*>(delivery)->connection_ = connection;
        return CURL_SOCKOPT_OK;
    }

    void Address(const MailMessage& message) {
        for (const std::string& recipient : {message.to, message.cc, message.bcc}) {
            if (!recipient.empty()) {
                recipients_.Add(Bracketed(recipient));
            }
        }
        headers_.Add("Date: " + DateHeader());
        headers_.Add("From: " + Bracketed(message.sender));
        if (!message.to.empty()) {
            headers_.Add("To: " + Bracketed(message.to));
        }
        if (!message.cc.empty()) {
            headers_.Add("Cc: " + Bracketed(message.cc));
        }
        headers_.Add("Subject: " + HeaderText(message.subject));
        Option(CURLOPT_MAIL_FROM, Bracketed(message.sender).c_str());
        Option(CURLOPT_MAIL_RCPT, recipients_.Get());
        Option(CURLOPT_HTTPHEADER, headers_.Get());
    }

    void Fill(const MailMessage& message) {
        curl_mimepart* text = curl_mime_addpart(mime_.get());
        curl_mime_data(text, message.text.c_str(), message.text.size());
        curl_mime_type(text, "text/plain; charset=utf-8");
        curl_mime_encoder(text, "quoted-printable");
        if (!message.attachment.empty()) {
            curl_mimepart* file = curl_mime_addpart(mime_.get());
            if (curl_mime_filedata(file, message.attachment.c_str()) != CURLE_OK) {
                throw std::runtime_error("no file " + message.attachment.filename().string());
            }
            curl_mime_type(file, "application/rtf");
            curl_mime_encoder(file, "base64");
        }
        Option(CURLOPT_MIMEPOST, mime_.get());
    }

    MailOutcome Result() {
        int left = 0;
        while (const CURLMsg* done = curl_multi_info_read(multi_.get(), &left)) {
            if (done->msg == CURLMSG_DONE && done->data.result == CURLE_OK) {
                return {true, {}};
            }
            if (done->msg == CURLMSG_DONE) {
                const std::string words = words_.data();
                return {false, words.empty() ? curl_easy_strerror(done->data.result) : words};
            }
        }
        return {false, "the connection was lost"};
    }

    std::array<char, CURL_ERROR_SIZE> words_{};
    curl_socket_t connection_ = CURL_SOCKET_BAD;  // the last one that was opened
    TextList recipients_;
    TextList headers_;
    std::unique_ptr<CURL, EasyEnd> easy_;
    std::unique_ptr<CURLM, MultiEnd> multi_;
    std::unique_ptr<curl_mime, MimeEnd> mime_;
};

}  // namespace

MailOutcome SmtpTransport::Send(const MailMessage& message, const MailServer& server, core::Clock& clock,
                                const std::function<bool()>& ended) {
    try {
        StartCurl();
        return Delivery(message, server).Run(clock, ended);
    } catch (const std::exception& failure) {
        return {false, failure.what()};
    }
}

}  // namespace collection
