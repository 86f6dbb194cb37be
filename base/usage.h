// Command lines: CLI11 takes them apart, and what is wrong with one is said in a sentence of ours.
#pragma once
#include <CLI/CLI.hpp>
#include <optional>
#include <string>
#include <vector>

namespace sparkrig {

/// For Option::check: a number within the limits, both included.
CLI::Validator NumberBetween(double low, double high);
CLI::Validator WholeNumberBetween(std::int64_t low, std::int64_t high);

/// A program that ends before it has begun: its code, and what it says, on the error stream unless the code is 0.
struct EarlyEnd {
    int code;
    std::string text;
};

/// 2, and "NAME: REASON (--help shows the options)".
EarlyEnd WrongUsage(const CLI::App& app, const std::string& reason);

/// For a new App, before its options: --help, and options without a value take none.
void BeginUsage(CLI::App& app);

/// What becomes of words that are no options, and that the program has no use for.
enum class OtherWords { Refused, Ignored };

/// Gives the words behind the program's name to the options. Ends early for help, the version, and a word that is
/// missing, empty, given twice or unknown.
std::optional<EarlyEnd> ParseWords(CLI::App& app, const std::vector<std::string>& words,
                                   OtherWords others = OtherWords::Refused);

/// Says it; the code.
int Print(const EarlyEnd& end);

/// The code that a program ends with: 1 after a sentence when what it printed could not be written.
int EndAfterOutput(const char* program, int code);

}   // namespace sparkrig
