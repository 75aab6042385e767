#pragma once

#include "tools/propertyserver/Peer.h"

#include <cstddef>
#include <type_traits>
#include <utility>

/// Requests on their way to an owner, in as many messages as it takes for each to stay within a frame. What
/// does not fit into one by itself is left out.
class Parcel {
public:
    /// @p always: also to who does not take more.
    explicit Parcel(Peer& owner, bool always = false) : m_owner(owner), m_always(always) {}

    template <typename Request>
    void add(void (JSONPICL::*addTo)(Request), Request request) {
        std::size_t size = kItemSize + request.component.size() + request.group.size() + request.guid.size();
        if constexpr (std::is_same_v<Request, PropertySetRequest>)
            size += request.value.size();
        if (size > kRoom)
            return;
        if (m_size + size > kRoom)
            send();
        m_size += size;
        (m_message.*addTo)(std::move(request));
    }

    void send() {
        if (std::exchange(m_size, 0) > 0 && (m_always || m_owner.takesMore()))
            m_owner.send(m_message);
        m_message.clear();
    }

private:
    static constexpr std::size_t kItemSize = 64;                     // around the fields of an item, at most
    static constexpr std::size_t kRoom = frame::kLargestText - 1024; // and around the items

    Peer& m_owner;
    const bool m_always;
    JSONPICL m_message;
    std::size_t m_size = 0;
};
