#pragma once

#include "picl/PropertyRecords.h"
#include "json/JSONImporterExporter.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

/// The keys of a message.
namespace keys {
inline constexpr std::string_view kGetRequests = "PropertyGetRequests";
inline constexpr std::string_view kSubscribeRequests = "PropertySubscribeRequests";
inline constexpr std::string_view kSetRequests = "PropertySetRequests";
inline constexpr std::string_view kGetResponses = "PropertyGetResponses";
inline constexpr std::string_view kGetAll = "GetAllProperties";
inline constexpr std::string_view kSubscribeAll = "SubscribeAllCurrentAndNewProperties";
inline constexpr std::string_view kGetAllResponse = "GetAllPropertiesResponse";
inline constexpr std::string_view kDisconnect = "Disconnect";
} // namespace keys

/// A message as it travels.
class JSONPICLImporterExporter : public JSONImporterExporter {};

/// One message of the property system: records to JSON and back. It can carry several kinds of content.
///
/// Nothing of a message is rejected here: a missing field, or one that is no text, reads as an empty text, a
/// list that is none as an empty one. Belongs to one thread.
class JSONPICL final : public JSONPICLImporterExporter {
public:
    /// Appends one subscription to those that stand there.
    virtual void addSubscribeRequest(PropertyGetRequest request);

    /// Replaces the subscriptions by @p requests, in their order.
    virtual void addSubscribeRequests(std::unique_ptr<PropertyGetRequests> requests);

    /// Appends one get to those that stand there.
    void addGetRequest(PropertyGetRequest request);

    /// Asks for all properties.
    void addGetAll();

    /// Asks for all properties, and for what becomes of them and of later ones.
    void addSubscribeAll();

    /// Appends one set to those that stand there. Requires: its value is escaped.
    void addSetRequest(PropertySetRequest request);

    /// Replaces the reports by @p responses, in their order. Requires: their values are escaped.
    void addGetResponses(std::unique_ptr<PropertyGetResponses> responses);

    /// Sets an empty list of reports.
    void startGetResponses();

    /// Appends one report to those that stand there. Requires: its value is escaped.
    void addGetResponse(PropertyGetResponse response);

    /// Marks the reports as the answer to a question for all properties.
    void addGetAllPropertiesResponse();

    /// Announces that the sender disconnects.
    void addDisconnect();

    /// Appends the gets and behind them the subscriptions.
    void readGetRequests(PropertyGetRequests& requests) const;
    void readSetRequests(PropertySetRequests& requests) const;
    void readGetResponses(PropertyGetResponses& responses) const;

    /// The same, one record after the other: a message can have millions.
    void forEachGetRequest(const std::function<void(PropertyGetRequest)>& handle) const;
    void forEachSubscribeRequest(const std::function<void(PropertyGetRequest)>& handle) const; ///< No gets.
    void forEachSetRequest(const std::function<void(PropertySetRequest)>& handle) const;
    void forEachGetResponse(const std::function<void(PropertyGetResponse)>& handle) const;

    /// Returns whether all properties, present and future, are subscribed to.
    [[nodiscard]] bool hasSubscribeAll() const { return has(keys::kSubscribeAll); }

    /// Returns whether all properties are asked for, or any are subscribed to, or whether anything is asked.
    [[nodiscard]] bool asksForAll() const { return has(keys::kGetAll) || hasSubscribeAll(); }
    [[nodiscard]] bool subscribes() const { return has(keys::kSubscribeRequests) || hasSubscribeAll(); }
    [[nodiscard]] bool asks() const { return asksForAll() || subscribes() || has(keys::kGetRequests); }

    /// Returns whether the message has @p key, whatever stands under it.
    [[nodiscard]] bool has(std::string_view key) const;
};

/// Returns @p text with the control bytes, the double quote and the backslash escaped as RFC 8259 section 7
/// does; every other byte, a slash too, as it is.
[[nodiscard]] std::string escapeText(std::string_view text);

/// Returns the size of escapeText(@p text).
[[nodiscard]] std::size_t escapedSize(std::string_view text);

/// Escapes @p text itself, as escapeText() does.
void escapeInPlace(std::string& text);
