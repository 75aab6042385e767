#pragma once

#include <deque>
#include <memory>
#include <string>
#include <string_view>

/// The records of a message. All fields are texts, bytes as they come.

/// Asks for a property, or for all of its group where `guid` is empty; once, or for good as a subscription.
struct PropertyGetRequest {
    std::string component; ///< The GUID of the program that owns the property.
    std::string group;     ///< The GUID of the property's group.
    std::string guid;      ///< The GUID of the property.
};

/// Sets a property.
struct PropertySetRequest {
    std::string guid;
    std::string group;
    std::string component;
    std::string value; ///< Escaped where it leaves, plain where it arrives.
};

/// Reports a property.
struct PropertyGetResponse {
    std::string group;
    std::string groupString; ///< The name of the group.
    std::string guid;
    std::string nameString; ///< The name of the property.
    std::string value;      ///< Escaped where it leaves, plain where it arrives.
    std::string status;     ///< One of the texts of namespace status.
    std::string component;
    std::string componentString; ///< The name of the program.
};

using PropertyGetRequests = std::deque<PropertyGetRequest>;
using PropertySetRequests = std::deque<PropertySetRequest>;
using PropertyGetResponses = std::deque<PropertyGetResponse>;

/// What a report says of its property.
namespace status {
inline constexpr std::string_view kSuccessful = "Successful";
inline constexpr std::string_view kNotFound = "Property Not Found";
inline constexpr std::string_view kNoLongerAvailable = "Property No Longer Available"; // with its last value
} // namespace status
