#pragma once

#include <cstddef>
#include <cstdio>

class JSONBuilder;

/// How the reader runs the scanner and the parser, which know one text at a time: a scan is begun, parsed and
/// ended. All under jsonEngineLock.

/// The bytes of a token, where they stand in the scanner's buffer: good until the next token is asked for.
struct JSONTokenText {
    const char* bytes;
    std::size_t size;
};

void beginTextScan(const char* text);
void beginFileScan(std::FILE* file);
void endScan();

/// Reads the text of the scan. Returns 0 on success.
int jsonparse(JSONBuilder& builder);

/// Returns the number that a token of rule 11 or 12 stands for, whatever the locale of the process.
double parseFloat(JSONTokenText text);
