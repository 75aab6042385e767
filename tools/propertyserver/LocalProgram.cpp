#include "tools/propertyserver/LocalProgram.h"

#include "picl/FrameReader.h"
#include "picl/PropertyReports.h"
#include "picl/ReportFrames.h"
#include "property/MakeProperty.h"
#include "property/StringProperty.h"

#include <algorithm>
#include <utility>

LocalProgram::LocalProgram(const VocabularyEntry& component, Say say)
    : m_say(std::move(say)),
      m_component(makeProperty<StringProperty>(vocabulary::groups::kComponents, component, component.name)) {}

void LocalProgram::add(const std::shared_ptr<Property>& property, Accepts accepts) {
    m_accepts.emplace(property.get(), std::move(accepts));
    m_table.addProperty(property);
    property->addListener([this](const std::shared_ptr<Property>& which) { changed(which); });
    report(*property);
}

void LocalProgram::changed(const std::shared_ptr<Property>& property) {
    if (!m_isTakingSets)
        report(*property);
    else if (std::find(m_changed.begin(), m_changed.end(), property) == m_changed.end())
        m_changed.push_back(property);
}

void LocalProgram::report(const Property& property) const {
    std::optional<PropertyGetResponse> one = makeReport(property, status::kSuccessful, *m_component);
    if (!one)
        return;
    JSONPICL message;
    message.addGetResponse(std::move(*one));
    m_say(message.toFrame());
}

// Read as it would be at the other end of a connection: what leaves is escaped, what arrives is not.
void LocalProgram::send(JSONPICL& message) {
    FrameReader reader;
    reader.take(message.toFrame());
    JSONPICL received;
    if (reader.next(received) != FrameReader::Result::Message)
        return;
    takeSets(received);
    if (received.asks())
        answer(received);
}

void LocalProgram::takeSets(const JSONPICL& message) {
    m_isTakingSets = true;
    message.forEachSetRequest([this](const PropertySetRequest& request) {
        const std::shared_ptr<Property> property = m_table.findProperty(request.guid, request.group);
        if (property && m_accepts.at(property.get())(request.value))
            applyText(*property, request.value);
    });
    m_isTakingSets = false;
    for (const std::shared_ptr<Property>& property : std::exchange(m_changed, {}))
        report(*property);
}

void LocalProgram::answer(const JSONPICL& message) const {
    const bool isForAll = message.asksForAll();
    JSONPICL answer;
    ReportFrames frames(answer, isForAll ? ReportFrames::Kind::GetAllAnswer : ReportFrames::Kind::Reports,
                        [this](JSONPICL& frame) {
                            m_say(frame.toFrame());
                            return true;
                        });
    const ReportSink add = [&](PropertyGetResponse report) { return frames.add(std::move(report)); };
    if (isForAll)
        reportAll(m_table, *m_component, add);
    else
        message.forEachGetRequest(
            [&](const PropertyGetRequest& request) { reportAnswer(m_table, request, *m_component, add); });
    static_cast<void>(frames.finish()); // nothing fails there
}
