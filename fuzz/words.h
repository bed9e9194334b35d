#pragma once

#include <set>
#include <string>
#include <vector>

#include "value/property_value.h"

namespace fernwick::fuzz {

/// The words of a dictionary of the fuzzing engine, each once.
using Words = std::set<std::string>;

/// What is between values in each serialisation. Of XML, also every tag that writes the
/// samples.
Words XmlWords(const std::vector<PropertyValue>& samples);
Words TextWords();
Words BinaryWords();

/// Every key in the values, and every string that is short enough to be a word.
Words WordsIn(const std::vector<PropertyValue>& values);

}  // namespace fernwick::fuzz
