#pragma once

#include "property/PropertyVocabulary.h"

#include <memory>

/// Returns a new property of class T, known by the texts of the vocabulary.
template <typename T, typename V>
std::shared_ptr<T> makeProperty(const VocabularyEntry& group, const VocabularyEntry& property, V value) {
    return std::make_shared<T>(value, property.guid, property.name, group.guid, group.name);
}
