#pragma once

#include <QString>
#include <cstdint>

/// One language on offer. One that was asked for but never loaded has no file and no numbers.
struct LanguageEntry {
    QString file;              // the name of the translation with its ".qm"; empty for the base language
    std::int32_t language = 0; // a QLocale::Language
    std::int32_t country = 0;  // a QLocale::Country
};
