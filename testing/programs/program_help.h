#pragma once

#include <map>
#include <set>
#include <string>

namespace fernwick::testing {

/// Every verb that `fernwick-lab --help` lists, with the options that the verb's own --help lists,
/// as they are typed ("-p", "--payload"), without those that ask for help.
std::map<std::string, std::set<std::string>> VerbsAndOptions(const std::string& labProgram);

/// The options of a verb that accept one of several words, as its help lists them.
std::map<std::string, std::set<std::string>> ChoicesOf(const std::string& labProgram,
                                                       const std::string& verb);

/// Every option that the tool accepts, as it is typed, found by trying each letter.
std::set<std::string> OptionsOfTool(const std::string& program);

}  // namespace fernwick::testing
