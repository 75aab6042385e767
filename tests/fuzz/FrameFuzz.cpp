#include "picl/JSONPICL.h"
#include "tests/fuzz/Check.h"
#include "tests/support/MemoryStream.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>

namespace {

template <typename Record>
void escape(Record& record) {
    for (std::string* text : {&record.component, &record.group, &record.guid})
        *text = escapeText(*text);
    if constexpr (requires { record.value; })
        record.value = escapeText(record.value);
    if constexpr (requires { record.status; }) {
        for (std::string* text :
             {&record.groupString, &record.nameString, &record.status, &record.componentString})
            *text = escapeText(*text);
    }
}

/// Returns the frame of a new message with the records of @p message.
std::string passedOn(const JSONPICL& message) {
    JSONPICL next;
    auto gets = std::make_unique<PropertyGetRequests>();
    message.readGetRequests(*gets);
    for (PropertyGetRequest& get : *gets)
        escape(get);
    next.addSubscribeRequests(std::move(gets));

    PropertySetRequests sets;
    message.readSetRequests(sets);
    for (PropertySetRequest& set : sets) {
        escape(set);
        next.addSetRequest(std::move(set));
    }

    auto responses = std::make_unique<PropertyGetResponses>();
    message.readGetResponses(*responses);
    for (PropertyGetResponse& response : *responses)
        escape(response);
    next.addGetResponses(std::move(responses));

    if (message.has(keys::kGetAllResponse))
        next.addGetAllPropertiesResponse();
    if (message.has(keys::kDisconnect))
        next.addDisconnect();
    MemoryStream out;
    check(next.exportTo(out) && out.writes == 1, "a frame goes out in one write");
    return std::move(out.output);
}

/// Returns @p text as a frame.
std::string framed(const std::string& text) {
    std::string frame(frame::kMagic.begin(), frame::kMagic.end());
    for (std::size_t i = 0; i < frame::kLengthSize; ++i)
        frame += static_cast<char>(text.size() >> i * 8 & 0xFF);
    return frame + text;
}

} // namespace

/// Frames, one behind the other; or the text of a message alone, so that a fuzzer need not find its length.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::string bytes(reinterpret_cast<const char*>(data), size);
    MemoryStream in(bytes.starts_with('{') ? framed(bytes) : std::move(bytes));
    in.largestRead = frame::kMagic.size();

    JSONPICL message;
    message.addDisconnect();
    while (message.importFrom(in)) {
        static_cast<void>(message.hasSubscribeAll()); // no record
        const std::string frame = passedOn(message);
        MemoryStream again(frame);
        JSONPICL same;
        check(same.importFrom(again) && again.input.empty(), "a frame that went out is one that comes in");
        check(passedOn(same) == frame, "the records of a message that is passed on stay as they are");
        message.clear();
        message.addDisconnect();
    }
    check(message.has(keys::kDisconnect), "what fails leaves the message as it was");
    return 0;
}
