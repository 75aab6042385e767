#pragma once

#include "platform/KeltoMutex.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

/// One typed value with a fixed identity, which anyone may hold, read, set and listen to.
///
/// The value is in the derived classes; here are the identity and the road of a change to the listeners.
/// Setters compare and notify; loaders store silently. Properties live in shared pointers from their
/// creation. No lock of a property is held while its listeners run.
class Property : public std::enable_shared_from_this<Property> {
public:
    using Listener = std::function<void(std::shared_ptr<Property>)>;

    virtual ~Property();

    Property(const Property&) = delete;
    Property& operator=(const Property&) = delete;

    /// Returns the value as text. Thread: any.
    [[nodiscard]] virtual std::string toString() const = 0;

    /// Sets the value that @p text stands for, as setValue() does. Numbers throw as parseUInt32() does, and
    /// then keep their value. Thread: any. Blocks while the listeners run.
    virtual void setFromString(std::string_view text) = 0;

    /// Stores the value that @p text stands for and tells nobody. Throws as setFromString() does.
    /// Thread: any.
    virtual void loadFromString(std::string_view text) = 0;

    /// Returns the text for the file and the wire. Thread: any.
    [[nodiscard]] virtual std::string getStringValue() const = 0;

    /// Calls the listeners that stand there now, in the order of their adding, on this thread. What one of
    /// them throws ends the calls and reaches the caller. Throws std::bad_weak_ptr at the first listener if
    /// no shared pointer holds the property. Thread: any. Blocks while the listeners run.
    virtual void notifyListeners();

    [[nodiscard]] std::string getGuid() const { return m_guid; }
    [[nodiscard]] std::string getName() const { return m_name; }
    [[nodiscard]] std::string getGroupGuid() const { return m_groupGuid; }
    [[nodiscard]] std::string getGroupName() const { return m_groupName; }

    /// Adds @p listener behind the others, for good; one that is added twice is called twice. It hears of
    /// changes that come after. Requires: not called by a listener of this property. Thread: any.
    void addListener(Listener listener);

protected:
    Property(std::string_view guid, std::string_view name, std::string_view groupGuid,
             std::string_view groupName);

private:
    using Listeners = std::vector<Listener>;

    const std::string m_guid;
    const std::string m_name;
    const std::string m_groupGuid;
    const std::string m_groupName;
    mutable KeltoMutex m_listenersLock;
    std::shared_ptr<Listeners> m_listeners KELTO_GUARDED_BY(m_listenersLock); // absent until the first
};
