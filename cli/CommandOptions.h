#pragma once
// Reading a command's words against the options it knows. Every command
// reads through here, so a misspelt, repeated or empty option is told the
// same way everywhere instead of being passed over.

#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace qds {

struct OptionRule {
  std::string_view name;  // with its "--"
  bool takesValue;
};

struct CommandArgs {
  std::vector<std::string> words;              // the words that are no options, in order
  std::map<std::string, std::string> options;  // the options given; a switch has ""
  std::string error;                           // the first mistake, for the user; empty when all was read
  bool Has(const std::string& o) const { return options.count(o) > 0; }
  std::string Get(const std::string& o) const;
};

enum class UnknownOptions {
  Refuse,
  // Once the first plain word (a command) is read, options this table does
  // not know are passed on among the words, for the command to read.
  PassAfterFirstWord,
};

// A word beginning with "--" is an option. A value follows as the next word
// or after "=" (--out=DIR). A value may itself begin with "-", but when the
// next word is a known option the value was left out, and that is an error.
// More than `mostWords` plain words are an error too.
CommandArgs ReadCommandArgs(const std::vector<std::string>& words, std::span<const OptionRule> known,
                            std::size_t mostWords, UnknownOptions unknown = UnknownOptions::Refuse);

// "unknown option --fromat; did you mean --format?": the hint names the known
// option nearest to what was typed, when one is near enough to be meant.
std::string UnknownOption(std::string_view option, std::span<const OptionRule> known);

// Optional blanks around an optional sign and decimal digits, nothing else;
// nullopt also for a number beyond 64 bits.
std::optional<std::int64_t> WholeNumber(std::string_view text);

}  // namespace qds
