#pragma once

#include "tools/picl/CommandLine.h"
#include "tools/picl/PropertyNames.h"
#include "tools/picl/PropertySession.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// What the commands share beside their options. Errors go to the standard error stream and nowhere else.

/// How properties are named, for the help.
inline constexpr std::string_view kNamesHelp =
    "A property is named by its name, by \"group/name\" or by \"program/group/name\", in whatever case, or "
    "by\n"
    "GUID, \"group:guid\" or \"component:group:guid\" as \"picl list --guids\" shows them.\n"
    "Exit status: 0 done; 1 not found, ambiguous, refused, no answer or no server; 2 bad arguments.";

/// What to do where an empty text is to name what is there.
inline constexpr const char* kSeeList = "\"picl list\" shows what is there";

/// Adds to @p command the names of properties, which go to @p names.
CLI::Option* addNames(CLI::App& command, std::vector<std::string>& names);

/// Tells @p sentence as an error, and below it each of @p choices.
void complain(std::string_view sentence, const std::vector<std::string>& choices = {});

/// Tells @p sentence about what is not there, and what is like it; if nothing is, the command that tells all.
void complainOfMissing(const std::string& sentence, const std::vector<std::string>& closest,
                       const std::string& telling);

/// Returns a connection to the server; null, and complains, on failure.
[[nodiscard]] std::unique_ptr<PropertySession> openSession(const CommonOptions& options);

/// Returns the properties among which are those that @p names mean: all, but where each is named by all its
/// GUIDs those alone, so that no program is waited for that has nothing to do with them. Nothing on failure.
[[nodiscard]] std::optional<Properties> propertiesFor(PropertySession& session,
                                                      const std::vector<std::string>& names);

/// A connection, and properties as they stood when it was made.
struct Snapshot {
    std::unique_ptr<PropertySession> session;
    Properties properties;
};

/// Returns propertiesFor() @p names, without names all; nothing, and complains, on failure.
[[nodiscard]] std::optional<Snapshot> takeSnapshot(const CommonOptions& options,
                                                   const std::vector<std::string>& names = {});

/// Returns the one property that @p name means; null, and complains, where there is none or more than one.
[[nodiscard]] const PropertyGetResponse* findProperty(const PropertyNames& names, const std::string& name);

/// Returns the GUID of the component that @p program means, by its GUID or its name, in @p properties;
/// nothing, and complains, where there is none or more than one.
[[nodiscard]] std::optional<std::string> findProgram(const Properties& properties,
                                                     const std::string& program);

/// Returns @p answer if it tells of a property that is there; null, and complains with @p name, if not.
[[nodiscard]] const PropertyGetResponse* checkAnswer(const std::optional<PropertyGetResponse>& answer,
                                                     const std::string& name);

/// Returns @p text in quotation marks.
[[nodiscard]] std::string inQuotes(std::string_view text);
