#include "mail/SmtpTransport.h"

#include <curl/curl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <memory>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

#include "core/Text.h"
#include "mail/MailHeaders.h"

namespace mail {

namespace {

constexpr double stepMs = 20;  // between two looks at the connection, in which the event loop turns
constexpr std::uint32_t longestStepMs = 1000;
constexpr int pollMs = 4;  // at most, in which it does not
constexpr long connectLimitMs = 15000;
constexpr const char* farewell = "221";
constexpr const char* ownMachine = "smtp://127.0.0.1:25";

void Require(CURLcode code) {
    if (code != CURLE_OK) {
        throw std::runtime_error(curl_easy_strerror(code));
    }
}

// curl needs its global state before the first handle; the last transport's end is the program's.
void StartCurl() {
    static const CURLcode started = curl_global_init(CURL_GLOBAL_DEFAULT);
    Require(started);
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

std::vector<std::string> Recipients(const MailMessage& message) {
    std::vector<std::string> recipients;
    for (const std::string& recipient : {message.to, message.cc, message.bcc}) {
        if (!recipient.empty()) {
            recipients.push_back(recipient);
        }
    }
    return recipients;
}

void RequireAddress(const std::string& text) {
    if (!IsAddress(text)) {
        throw std::invalid_argument(NotOneAddress(text));
    }
}

class Delivery {
  public:
    Delivery(const MailMessage& message, const MailServer& server, const core::Clock& clock)
        : easy_(curl_easy_init()), multi_(curl_multi_init()), mime_(curl_mime_init(easy_.get())) {
        if (!easy_ || !multi_ || !mime_) {
            throw std::runtime_error("no memory for the mail");
        }
        Address(message, clock);
        Fill(message);
        Server(server);
        Connections();
        curl_multi_add_handle(multi_.get(), easy_.get());
    }
    ~Delivery() {
        StopListening();
        curl_multi_remove_handle(multi_.get(), easy_.get());
    }
    Delivery(const Delivery&) = delete;
    Delivery& operator=(const Delivery&) = delete;

    MailOutcome Run(core::Clock& clock, double timeLimitMs, const std::function<bool()>& ended) {
        double waitedMs = 0;
        for (;;) {
            int running = 0;
            curl_multi_perform(multi_.get(), &running);
            if (running == 0) {
                return Result();
            }
            if (ended()) {
                return {false, "the program ends"};
            }
            if (waitedMs >= timeLimitMs) {
                return {false, "the mail server takes too long"};
            }
            // Ends at once when there is something to do. On a clock whose waits take no time the server still gets
            // some.
            curl_multi_poll(multi_.get(), nullptr, 0, pollMs, nullptr);
            const std::uint32_t before = clock.Milliseconds();
            clock.WaitMs(stepMs, ended);
            // Stations that were collected inside the wait are not the mail server's slowness.
            waitedMs += std::min(clock.Milliseconds() - before, longestStepMs);
        }
    }

  private:
    template <typename Setting>
    void Option(CURLoption option, Setting setting) {
        Require(curl_easy_setopt(easy_.get(), option, setting));
    }

    void Address(const MailMessage& message, const core::Clock& clock) {
        RequireAddress(message.sender);
        for (const std::string& recipient : Recipients(message)) {
            RequireAddress(recipient);
            recipients_.Add(Bracketed(recipient));
        }
        const std::string unique = message.unique.empty()
                                       ? std::to_string(clock.Milliseconds()) + "." + std::to_string(getpid())
                                       : message.unique;
        for (const std::string& header : MailHeaders(message, message.written.value_or(clock.Now()), unique)) {
            headers_.Add(header);
        }
        Option(CURLOPT_MAIL_FROM, Bracketed(message.sender).c_str());
        Option(CURLOPT_MAIL_RCPT, recipients_.Get());
        Option(CURLOPT_HTTPHEADER, headers_.Get());
    }

    void Fill(const MailMessage& message) {
        const std::string lines = core::ReplaceAll(core::ReplaceAll(message.text, "\r\n", "\n"), "\n", "\r\n");
        curl_mimepart* text = curl_mime_addpart(mime_.get());
        Require(curl_mime_data(text, lines.data(), lines.size()));
        Require(curl_mime_type(text, "text/plain; charset=utf-8"));
        Require(curl_mime_encoder(text, "quoted-printable"));
        if (!message.attachmentName.empty()) {
            curl_mimepart* file = curl_mime_addpart(mime_.get());
            Require(curl_mime_data(file, message.attachment.data(), message.attachment.size()));
            Require(curl_mime_filename(file, message.attachmentName.c_str()));
            attachmentHeaders_.Add(Disposition(message.attachmentName));
            Require(curl_mime_headers(file, attachmentHeaders_.Get(), 0));
            if (message.attachmentName.ends_with(".rtf")) {
                Require(curl_mime_type(file, "application/rtf"));  // of the others curl knows the type
            }
            Require(curl_mime_encoder(file, "base64"));
        }
        Option(CURLOPT_MIMEPOST, mime_.get());
    }

    void Server(const MailServer& server) {
        Option(CURLOPT_URL, server.url.empty() ? ownMachine : server.url.c_str());
        Option(CURLOPT_PROTOCOLS_STR, "smtp,smtps");
        Option(CURLOPT_PROXY, "");  // whatever the environment says
        if (!server.user.empty()) {
            Option(CURLOPT_USERNAME, server.user.c_str());
            Option(CURLOPT_PASSWORD, server.password.c_str());
            Option(CURLOPT_USE_SSL, static_cast<long>(CURLUSESSL_ALL));
        }
    }

    void Connections() {
        Option(CURLOPT_CONNECTTIMEOUT_MS, connectLimitMs);
        Option(CURLOPT_NOSIGNAL, 1L);
        Option(CURLOPT_QUICK_EXIT, 1L);  // a name that is still being looked up holds nobody up
        Option(CURLOPT_ERRORBUFFER, words_.data());
        Option(CURLOPT_HEADERFUNCTION, &Delivery::Said);
        Option(CURLOPT_HEADERDATA, this);
        Option(CURLOPT_SOCKOPTFUNCTION, &Delivery::Opened);
        Option(CURLOPT_SOCKOPTDATA, this);
        Option(CURLOPT_CLOSESOCKETFUNCTION, &Delivery::Closed);
        Option(CURLOPT_CLOSESOCKETDATA, this);
    }

    // At the end of a connection curl says QUIT and waits up to two minutes for the answer, with the whole program. The
    // mail's fate is known by then: with nothing more to hear the wait is over at once.
    void StopListening() const {
        for (const curl_socket_t connection : open_) {
            shutdown(connection, SHUT_RD);
        }
    }
    static int Opened(void* delivery, curl_socket_t connection, curlsocktype) {
        static_cast<Delivery*>(delivery)->open_.insert(connection);
        return CURL_SOCKOPT_OK;
    }
    static int Closed(void* delivery, curl_socket_t connection) {
        static_cast<Delivery*>(delivery)->open_.erase(connection);
        return close(connection);
    }

    // Each line of the server's answers comes here. The last one of a mail that fails says why; behind it comes only
    // the farewell.
    static std::size_t Said(const char* line, std::size_t, std::size_t length, void* delivery) {
        const std::string answer = core::Trim(OneLine({line, length}));
        if (!answer.starts_with(farewell)) {
            static_cast<Delivery*>(delivery)->said_ = answer;
        }
        return length;
    }
    std::string Refusal() const {
        const bool refuses = !said_.empty() && (said_.front() == '4' || said_.front() == '5');
        return refuses ? ", the server said: " + said_ : "";
    }

    MailOutcome Result() {
        int left = 0;
        while (const CURLMsg* done = curl_multi_info_read(multi_.get(), &left)) {
            if (done->msg == CURLMSG_DONE && done->data.result == CURLE_OK) {
                return {true, {}};
            }
            if (done->msg == CURLMSG_DONE) {
                const std::string words = words_.data();
                return {false, (words.empty() ? curl_easy_strerror(done->data.result) : words) + Refusal()};
            }
        }
        return {false, "the connection was lost"};
    }

    std::array<char, CURL_ERROR_SIZE> words_{};
    std::string said_;
    std::set<curl_socket_t> open_;
    TextList recipients_;
    TextList headers_;
    TextList attachmentHeaders_;
    std::unique_ptr<CURL, EasyEnd> easy_;
    std::unique_ptr<CURLM, MultiEnd> multi_;
    std::unique_ptr<curl_mime, MimeEnd> mime_;
};

}  // namespace

MailOutcome SmtpTransport::Send(const MailMessage& message, const MailServer& server, core::Clock& clock,
                                const std::function<bool()>& ended) {
    try {
        StartCurl();
        return Delivery(message, server, clock).Run(clock, timeLimitMs_, ended);
    } catch (const std::exception& failure) {
        return {false, failure.what()};
    }
}

}  // namespace mail
