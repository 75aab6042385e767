#pragma once

#include <iosfwd>
#include <string>

class JSONArray;
class JSONObject;
class JSONValue;

/// JSON text on one line, in the one form that the wire knows: a blank behind a colon and nowhere else.
///
/// Nothing is escaped: texts and keys leave as they are, and whoever fills a tree escapes what needs it.
/// A double has 8 digits behind its point. No operation takes more of the stack for a deep tree than for a
/// flat one. Thread: any, one at a time for one tree.

/// Print to @p out and return it.
std::ostream& printValue(std::ostream& out, const JSONValue& value);
std::ostream& printObject(std::ostream& out, const JSONObject& object);
std::ostream& printArray(std::ostream& out, const JSONArray& array);

/// Appends to @p text what printObject() prints.
void appendObject(std::string& text, const JSONObject& object);
