#include "cli/CommandOptions.h"

#include <algorithm>
#include <charconv>

#include "platform/TextUtil.h"

namespace qds {

namespace {

const OptionRule* Find(std::string_view name, std::span<const OptionRule> known) {
  const auto it =
      std::find_if(known.begin(), known.end(), [&](const OptionRule& o) { return o.name == name; });
  return it == known.end() ? nullptr : &*it;
}

// The option a word names: all of it, or what stands before "=".
std::string_view NameOf(std::string_view word) {
  return word.substr(0, word.find('='));
}

bool IsOption(std::string_view word) {
  return word.size() >= 2 && word.substr(0, 2) == "--";
}

// Edits that turn one word into the other, where swapping two neighbours is
// one edit: "fromat" is one slip away from "format", not two.
std::size_t Distance(const std::string& a, const std::string& b) {
  std::vector<std::vector<std::size_t>> d(a.size() + 1, std::vector<std::size_t>(b.size() + 1));
  for (std::size_t i = 0; i <= a.size(); ++i) d[i][0] = i;
  for (std::size_t j = 0; j <= b.size(); ++j) d[0][j] = j;
  for (std::size_t i = 1; i <= a.size(); ++i) {
    for (std::size_t j = 1; j <= b.size(); ++j) {
      d[i][j] =
          std::min({d[i - 1][j] + 1, d[i][j - 1] + 1, d[i - 1][j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1)});
      if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1])
        d[i][j] = std::min(d[i][j], d[i - 2][j - 2] + 1);
    }
  }
  return d[a.size()][b.size()];
}

// An option's name without its dashes, for comparing what was typed.
std::string Bare(std::string_view word) {
  return AsciiLower(word.substr(std::min(word.size(), word.find_first_not_of('-'))));
}

}  // namespace

std::string CommandArgs::Get(const std::string& o) const {
  const auto it = options.find(o);
  return it == options.end() ? std::string() : it->second;
}

std::string UnknownOption(std::string_view option, std::span<const OptionRule> known) {
  const std::string typed = Bare(option);
  std::string best;
  std::size_t bestDistance = 0;
  for (const OptionRule& o : known) {
    const std::string name = Bare(o.name);
    const std::size_t d = Distance(typed, name);
    // Two slips at most, and never half the word: "--xyz" is no "--ids".
    if (d > 2 || 2 * d > std::max(typed.size(), name.size())) continue;
    if (best.empty() || d < bestDistance) {
      best = o.name;
      bestDistance = d;
    }
  }
  // Else a beginning of one option only: "--over" for "--overwrite".
  if (best.empty() && typed.size() >= 2) {
    for (const OptionRule& o : known) {
      if (Bare(o.name).rfind(typed, 0) != 0) continue;
      if (!best.empty()) return "unknown option " + std::string(option);
      best = o.name;
    }
  }
  return "unknown option " + std::string(option) + (best.empty() ? "" : "; did you mean " + best + "?");
}

CommandArgs ReadCommandArgs(const std::vector<std::string>& in, std::span<const OptionRule> known,
                            std::size_t mostWords, UnknownOptions unknown) {
  CommandArgs a;
  for (std::size_t i = 0; i < in.size(); ++i) {
    const std::string& word = in[i];
    if (!IsOption(word)) {
      a.words.push_back(word);
      continue;
    }
    const std::string name(NameOf(word));
    const OptionRule* rule = Find(name, known);
    if (!rule) {
      if (unknown == UnknownOptions::PassAfterFirstWord && !a.words.empty()) {
        a.words.push_back(word);
        continue;
      }
      a.error = UnknownOption(name, known);
      return a;
    }
    if (a.Has(name)) {
      a.error = name + " given twice";
      return a;
    }
    std::string value;
    if (name.size() < word.size()) {
      if (!rule->takesValue) {
        a.error = name + " takes no value";
        return a;
      }
      value = word.substr(name.size() + 1);
    } else if (rule->takesValue) {
      // "--name --overwrite" forgot the name; "--prefix -x" means "-x".
      if (i + 1 >= in.size() || (IsOption(in[i + 1]) && Find(NameOf(in[i + 1]), known))) {
        a.error = name + " needs a value";
        return a;
      }
      value = in[++i];
    }
    a.options[name] = value;
  }
  if (a.words.size() > mostWords) {
    // "-out" is an option typed with one dash rather than a stray word.
    const std::string& extra = a.words[mostWords];
    a.error = extra.size() > 1 && extra[0] == '-' ? UnknownOption(extra, known)
                                                  : "unexpected word \"" + extra + "\"";
  }
  return a;
}

std::optional<std::int64_t> WholeNumber(std::string_view text) {
  text = TrimBlanks(text);
  const bool negative = !text.empty() && text.front() == '-';
  if (!text.empty() && (text.front() == '+' || text.front() == '-')) text.remove_prefix(1);
  if (text.empty() || text.find_first_not_of("0123456789") != std::string_view::npos) return std::nullopt;
  // Read with the sign in place, so that the most negative number still fits.
  const std::string digits = (negative ? "-" : "") + std::string(text);
  std::int64_t v = 0;
  if (std::from_chars(digits.data(), digits.data() + digits.size(), v).ec != std::errc()) return std::nullopt;
  return v;
}

}  // namespace qds
