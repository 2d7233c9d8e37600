// How a BSAP station gives out its lists.

#include <algorithm>

#include "fieldsim/BsapBytes.h"
#include "fieldsim/BsapStation.h"

namespace fieldsim {

namespace {

using namespace std::string_view_literals;

// The field set of a request and how many bytes of it name the set; 0: it is none that the station knows.
std::size_t FieldSet(std::string_view fields, RecordForm& form) {
    form.name = fields.starts_with("\x05\xF9\x01"sv);
    form.texts = form.name;
    form.units = form.name || fields.starts_with("\x01\xF0"sv);
    return form.name ? 3 : form.units || fields.starts_with("\x01\xD0"sv) ? 2 : 0;
}

}  // namespace

// 0C or 0D, the field set, the load version, FF, the list; then where to go on. A first request has nothing behind the
// list, but for a CW two zeros.
std::optional<std::string> BsapStation::List(const Request& request, const Moment& now) {
    const bool first = request.function[0] == '\x0C';
    const std::string_view fields = request.function.substr(1);
    RecordForm form;
    const std::size_t set = FieldSet(fields, form);
    const std::string_view rest = Rest(fields, set);
    const std::size_t length = first && !options_.shortLayout ? 4 : 6;
    if (set == 0 || rest.size() != length || rest.substr(0, 3) != LoadVersion() + '\xFF' || !Open()) {
        return Open() ? Refusal(request) : Acknowledgement(request.sequence);
    }
    const int list = ByteAt(rest, 3);
    const int from = length == 6 ? LowFirstAt(rest, 4) : 0;
    if (from != 0 && options_.betweenReplies) {
        options_.betweenReplies();
    }
    const auto known = lists_.find(list);
    if (known == lists_.end() || known->second->Signals().empty() || first != (from == 0) ||
        from >= known->second->Places()) {
        return Refusal(request);
    }
    if (options_.silentLists.count(list) != 0) {
        return std::nullopt;
    }
    return AtOnceOrOnPoll(Page(request, list, from, form, now), request);
}

// As many records as a reply holds. In front of them stands how many the master has then had: there it goes on.
// Two zeros: that was the last.
std::string BsapStation::Page(const Request& request, int list, int from, const RecordForm& form, const Moment& now) {
    const int last = lists_.at(list)->Places();
    const std::string head = AnswerHead(request);
    std::string records;
    int position = from;
    while (position < last) {
        const std::string record = Record(list, position + 1, form, now);
        if (head.size() + 2 + records.size() + record.size() > kLongestBody) {
            break;
        }
        records += record;
        ++position;
    }
    return head + LowFirst(position < last ? position : 0) + records;
}

std::string BsapStation::Record(int list, int position, const RecordForm& form, const Moment& now) {
    const Signal* signal = lists_.at(list)->At(position);
    return signal != nullptr ? RecordOf({list, signal}, form, now) : EmptyRecord(list, position, form);
}

// A place without a signal still counts: it is a record of the list's kind with the value 0. Its address is that of the
// place as long as no signal had it; behind names, where masters write by it, it is 0.
std::string BsapStation::EmptyRecord(int list, int position, const RecordForm& form) const {
    Signal empty;
    empty.kind = lists_.at(list)->Signals().front().kind == Kind::Logical ? Kind::Logical : Kind::Float;
    const int msd = Msd(list, position);
    const bool free = position < Msd(1, 0) && addresses_.count(msd) == 0;
    return SignalRecord(empty, 0, {}, free && !form.name ? msd : 0, form);
}

std::string BsapStation::RecordOf(const Place& place, const RecordForm& form, const Moment& now) {
    SignalList& list = *lists_.at(place.list);
    const Signal& signal = *place.signal;
    const double value = list.Serve(signal, now);
    return SignalRecord(signal, value, list.Text(signal), MsdOf(place.list, signal), form);
}

int BsapStation::MsdOf(int list, const Signal& signal) {
    SignalList& signals = *lists_.at(list);
    int msd = signals.Msd(signal);
    if (msd == 0) {
        msd = Msd(list, signal.position);
        if (signal.position >= Msd(1, 0) || msd > kHighestMsd || addresses_.count(msd) != 0) {
            while (freeMsd_ > 0 && addresses_.count(freeMsd_) != 0) {
                --freeMsd_;
            }
            msd = freeMsd_;
        }
        signals.GiveMsd(signal, msd);
    }
    addresses_.insert(msd);
    return msd;
}

void BsapStation::LoadProgram() {
    for (const auto& [number, list] : lists_) {
        std::vector<int> addresses;
        for (const Signal& signal : list->Signals()) {
            addresses.push_back(MsdOf(number, signal));
        }
        std::rotate(addresses.begin(), addresses.begin() + (addresses.empty() ? 0 : 1), addresses.end());
        for (std::size_t i = 0; i < addresses.size(); ++i) {
            list->GiveMsd(list->Signals()[i], addresses[i]);
        }
    }
    ++options_.loadVersion2;
    signedOn_ = false;
}

BsapStation::Place BsapStation::ByMsd(int msd) const {
    for (const auto& [number, list] : lists_) {
        for (const Signal& signal : list->Signals()) {
            if (msd != 0 && list->Msd(signal) == msd) {
                return {number, &signal};
            }
        }
    }
    return {};
}

}  // namespace fieldsim
