#pragma once

#include "picl/JSONPICL.h"

#include <cstddef>
#include <string>
#include <string_view>

/// Messages in short hand, for scripts and transcripts: verbs, each with its items behind it.
///
///     get X/G:P X/G:    watch X/G:P    set X/G:P=5    get-all    watch-all    goodbye
///     tell X/G:P=5      lose X/G:P=5   miss X/G:P     all-there-is
///
/// X is a component, G a group, P a property. The reports are tell, lose (no longer available) and miss (not
/// found), in their order. The other names are those of their GUIDs in lower case.
using ShortHand = std::string;

/// Makes of a message what its reader makes of it, after it has travelled. Returns false if it is no message.
bool travel(JSONPICL& message, JSONPICL& received);

/// Puts the message into @p message.
void write(const ShortHand& text, JSONPICL& message);

/// Returns the message in short hand.
ShortHand shortHand(const JSONPICL& message);

/// Returns @p many times @p begin, a number and @p end; the numbers ascend from @p first.
std::string numbered(const std::string& begin, const std::string& end, std::size_t many,
                     std::size_t first = 0);
