#include "base/usage.h"

#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>

#include "base/nearest_word.h"

namespace sparkrig {

namespace {

constexpr int kDone = 0, kFindings = 1, kWrong = 2;

template <class Number>
CLI::Validator Between(Number low, Number high, const std::string& kind) {
    std::ostringstream sentence;
    sentence << " is no " << kind << " from " << low << " to " << high;
    return {[low, high, text = sentence.str()](std::string& word) {
                Number value = 0;
                const bool good = word.find_first_not_of("0123456789.+-eE") == std::string::npos &&
                                  CLI::detail::lexical_cast(word, value) && value >= low && value <= high;
                return good ? std::string() : word + text;
            },
            ""};
}

bool IsOption(const std::string& word) { return word.size() > 1 && word.front() == '-' && word != "--"; }

/// The app that the words after a command belong to.
const CLI::App& Chosen(const CLI::App& app) {
    const std::vector<CLI::App*> commands = app.get_subcommands();
    return commands.empty() ? app : *commands.front();
}

std::vector<std::string> KnownNames(const CLI::App& app, bool options) {
    std::vector<std::string> names;
    if (options)
        for (const CLI::Option* option : app.get_options()) names.push_back(option->get_name());
    else
        for (const CLI::App* command : app.get_subcommands(nullptr)) names.push_back(command->get_name());
    return names;
}

std::string Unknown(const char* what, const std::string& word, const std::vector<std::string>& known) {
    const std::string nearest = NearestWord(word, known);
    return what + word + (nearest.empty() ? "" : "; did you mean " + nearest + "?");
}

/// The first word that nobody took, as far as it is nobody else's.
std::string LeftOver(const CLI::App& app, OtherWords others) {
    const bool wants_command = !app.get_subcommands(nullptr).empty() && app.get_subcommands().empty();
    for (const std::string& word : app.remaining(true)) {
        if (word.empty() || word == "--") continue;
        if (IsOption(word))
            return Unknown("unknown option ", word.substr(0, word.find('=')), KnownNames(Chosen(app), true));
        if (others == OtherWords::Ignored) continue;
        if (wants_command) return Unknown("unknown command ", word, KnownNames(app, false));
        return "unknown word " + word;
    }
    return wants_command ? "a command is needed" : "";
}

std::string EmptyOption(const CLI::App& app) {
    for (const CLI::Option* option : app.get_options())
        for (const std::string& result : option->results())
            if (result.empty()) return option->get_name() + " is empty";
    return {};
}

/// CLI11 names the option in front of its own words, a flag without its dashes.
std::string Mismatch(const CLI::App& app, const std::string& text) {
    const std::string name = text.substr(0, text.find_first_of(": "));
    const CLI::Option* option = app.get_option_no_throw(name);
    if (!option) return "--" + name + " takes no value";
    if (option->results().size() > 1) return name + " is given more than once";
    return name + " needs a value";
}

}   // namespace

CLI::Validator NumberBetween(double low, double high) { return Between(low, high, "number"); }

CLI::Validator WholeNumberBetween(std::int64_t low, std::int64_t high) { return Between(low, high, "whole number"); }

EarlyEnd WrongUsage(const CLI::App& app, const std::string& reason) {
    return {kWrong, app.get_name() + ": " + reason + " (--help shows the options)\n"};
}

void BeginUsage(CLI::App& app) {
    app.allow_extras();
    app.set_help_flag("-h,--help", "show this text");
    app.option_defaults()->disable_flag_override();
}

std::optional<EarlyEnd> ParseWords(CLI::App& app, const std::vector<std::string>& words, OtherWords others) {
    try {
        app.parse(std::vector<std::string>(words.rbegin(), words.rend()));
    } catch (const CLI::CallForHelp&) {
        return EarlyEnd{kDone, app.help()};
    } catch (const CLI::CallForVersion& version) {
        return EarlyEnd{kDone, std::string(version.what()) + "\n"};
    } catch (const CLI::ArgumentMismatch& error) {
        return WrongUsage(app, Mismatch(Chosen(app), error.what()));
    } catch (const CLI::ParseError& error) {
        return WrongUsage(app, error.what());
    }
    for (const std::string& fault : {LeftOver(app, others), EmptyOption(app), EmptyOption(Chosen(app))})
        if (!fault.empty()) return WrongUsage(app, fault);
    return std::nullopt;
}

int Print(const EarlyEnd& end) {
    std::fputs(end.text.c_str(), end.code == kDone ? stdout : stderr);
    return end.code;
}

int EndAfterOutput(const char* program, int code) {
    if (std::fflush(stdout) == 0) return code;
    std::fprintf(stderr, "%s: the output can not be written: %s\n", program, std::strerror(errno));
    return kFindings;
}

}   // namespace sparkrig
