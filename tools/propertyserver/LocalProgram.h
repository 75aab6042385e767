#pragma once

#include "property/PropertyTable.h"
#include "property/PropertyVocabulary.h"
#include "tools/propertyserver/Peer.h"

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

class Property;

/// A program that lives in the server itself, and takes part as any other does.
///
/// Its properties are reported at each change, at once; what one message changes, once, when all of it is
/// set. Belongs to the thread of the event loop.
class LocalProgram final : public Peer {
public:
    /// Takes a message of this program, as it travels. Must not deal with it inside of the call.
    using Say = std::function<void(std::string frame)>;

    LocalProgram(const VocabularyEntry& component, Say say);

    /// Returns whether a property may be set to this text.
    using Accepts = std::function<bool(std::string_view text)>;

    /// Adds @p property and reports it. What others set and @p accepts refuses changes nothing. The program
    /// outlives the changes of the property.
    void add(
        const std::shared_ptr<Property>& property, Accepts accepts = [](std::string_view) { return true; });

    /// Does with @p message what a program does: takes sets, answers questions.
    void send(JSONPICL& message) override;

    // It watches nothing, and asks nothing.
    void answer(std::vector<SharedReport> /*reports*/, bool /*isForAll*/) override {}
    void publish(const SharedReport& /*report*/) override {}
    void hold(bool /*holds*/) override {}
    void end(std::string_view /*why*/) override {}

private:
    void changed(const std::shared_ptr<Property>& property);
    void report(const Property& property) const;
    void takeSets(const JSONPICL& message);
    void answer(const JSONPICL& message) const;

    const Say m_say;
    const std::shared_ptr<Property> m_component;
    PropertyTable m_table;
    std::map<const Property*, Accepts> m_accepts;
    std::vector<std::shared_ptr<Property>> m_changed; // by the message that is dealt with
    bool m_isTakingSets = false;
};
