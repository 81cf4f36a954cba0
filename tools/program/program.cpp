// SPDX-License-Identifier: MIT
#include "program.h"

#include <cstdlib>
#include <exception>
#include <iostream>
#include <sstream>

namespace {

template <class Number>
CLI::Validator limited(const char* kind, Number least, Number most) {
    const auto check = [=](const std::string& text) -> std::string {
        Number value = 0;
        const bool number = CLI::detail::lexical_cast(text, value);
        if (number && value >= least && value <= most) return "";
        std::ostringstream range;
        range << "takes " << kind << " from " << least << " to " << most;
        return range.str();
    };
    return CLI::Validator(check, "");
}

std::string inWords(const CLI::ParseError& error) {
    const std::string text = error.what();
    if (dynamic_cast<const CLI::ArgumentMismatch*>(&error)) {
        const std::string option = text.substr(0, text.find_first_of(": "));
        const bool missing = text.find("missing") != std::string::npos;
        return (option.starts_with("-") ? "" : "--") + option +
               (missing ? ": its value is missing" : ": takes no value");
    }
    return text;
}

}  // namespace

CLI::Validator within(double least, double most) { return limited("a number", least, most); }

CLI::Validator wholeWithin(std::int64_t least, std::int64_t most) {
    return limited("a whole number", least, most);
}

CLI::Validator oneOf(const std::vector<std::string>& words) {
    const auto check = [=](const std::string& text) -> std::string {
        std::string list;
        for (std::size_t i = 0; i < words.size(); ++i) {
            if (text == words[i]) return "";
            list += (i == 0 ? "" : i + 1 < words.size() ? ", " : " or ") + words[i];
        }
        return "takes " + list;
    };
    return CLI::Validator(check, "");
}

void makeFolder(const std::filesystem::path& folder) {
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    if (error) throw BadInput(folder.string() + ": cannot be a folder: " + error.message());
}

int runProgram(const char* name, const char* description, int argc, char** argv,
               const std::function<void(CLI::App&)>& declare, const std::function<int()>& body) {
    const auto failed = [&](const std::string& what, int status) {
        std::cout.flush();
        std::cerr << name << ": " << what << "\n";
        return status;
    };
    const auto written = [&](int status) {
        std::cout.flush();
        return std::cout ? status : failed("cannot write to the output", EXIT_FAILURE);
    };
    try {
        CLI::App app(description, name);
        try {
            declare(app);
            app.parse(argc, argv);
        } catch (const CLI::Success& e) {
            return written(app.exit(e));
        } catch (const CLI::ParseError& e) {
            return failed(inWords(e) + " (see --help)", 2);
        }
        return written(body());
    } catch (const BadInput& e) {
        return failed(e.what(), 2);
    } catch (const std::exception& e) {
        return failed(e.what(), EXIT_FAILURE);
    }
}
