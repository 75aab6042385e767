#pragma once

#include "tools/propertyserver/Peer.h"

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

/// One of many: counts the changes that it is told.
class CountingPeer final : public Peer {
public:
    void send(JSONPICL& /*message*/) override {}
    void answer(std::vector<SharedReport> /*reports*/, bool /*isForAll*/) override {}
    void publish(const SharedReport& /*report*/) override { ++told; }
    void hold(bool /*holds*/) override {}
    void end(std::string_view /*why*/) override {}

    std::size_t told = 0;
};

/// Returns a report on property @p guid of group "G".
inline SharedReport reportOn(std::string_view component, std::string_view guid, std::string_view value) {
    return std::make_shared<const Report>(PropertyGetResponse{.group = "G",
                                                              .groupString = "",
                                                              .guid = std::string(guid),
                                                              .nameString = "",
                                                              .value = std::string(value),
                                                              .status = std::string(status::kSuccessful),
                                                              .component = std::string(component),
                                                              .componentString = ""});
}
