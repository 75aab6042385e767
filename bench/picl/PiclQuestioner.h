#pragma once

#include "bench/TemporaryRoot.h"
#include "bench/picl/OwnedProperties.h"
#include "bench/picl/OwnerProgram.h"
#include "platform/HandleStream.h"

#include "picl/JSONPICL.h"
#include "platform/os/LocalListener.h"

#include <filesystem>
#include <string>
#include <utility>

/// Returns the question for one of the owner's properties.
inline PropertyGetRequest questionFor(std::size_t number) {
    return {.component = std::string(vocabulary::components::kUpgradeUI.guid),
            .group = std::string(vocabulary::groups::kDebugZone.guid),
            .guid = owned::guid(number)};
}

/// The end of a connection at which a benchmark asks.
class PiclAsker {
public:
    explicit PiclAsker(os::Descriptor socket) : m_stream(std::move(socket)) {}

    void say(JSONPICL& question) { require(question.exportTo(m_stream), "nobody listens"); }

    /// Returns the reports of the next frame.
    [[nodiscard]] PropertyGetResponses hear() {
        JSONPICL answer;
        require(answer.importFrom(m_stream), "nobody answers");
        PropertyGetResponses reports;
        answer.readGetResponses(reports);
        return reports;
    }

    /// Asks for one property. Returns the reports of the next frame.
    [[nodiscard]] PropertyGetResponses get(std::size_t number) {
        JSONPICL question;
        question.addGetRequest(questionFor(number));
        say(question);
        return hear();
    }

private:
    HandleStream m_stream;
};

/// An owner of @p count properties that is asked directly, over its device.
class PiclQuestioner {
public:
    explicit PiclQuestioner(std::size_t count)
        : m_device(deviceIn(m_root)),
          m_owner("picl_owner", {m_root.path().string(), std::to_string(count - owned::kOfTheAgent)}),
          asker(m_device.accept()) {
        require(asker.hear().size() == count, "the owner does not begin with all its properties");
        static_cast<void>(asker.hear()); // they changed when they came; nothing does of itself from now on
    }

    [[nodiscard]] double processorTime() const { return m_owner.processorTime(); }

private:
    static std::string deviceIn(const TemporaryRoot& root) {
        std::filesystem::create_directory(root.path() / "dev");
        std::filesystem::create_directory(root.path() / "store");
        return root.path() / "dev/PRN0";
    }

    TemporaryRoot m_root;
    os::LocalListener m_device;
    OwnerProgram m_owner;

public:
    PiclAsker asker;
};
