#include "program.h"

#include <cstdlib>
#include <exception>
#include <iostream>
#include <sstream>

CLI::Validator within(double least, double most) {
    const auto check = [least, most](const std::string& text) -> std::string {
        double value = 0;
        const bool number = CLI::detail::lexical_cast(text, value);
        if (number && value >= least && value <= most) return "";
        std::ostringstream range;
        range << "takes a number from " << least << " to " << most;
        return range.str();
    };
    return CLI::Validator(check, "");
}

int runProgram(const char* name, const char* description, int argc, char** argv,
               const std::function<void(CLI::App&)>& declare, const std::function<int()>& body) {
    const auto failed = [&](const std::string& what, int status) {
        std::cerr << name << ": " << what << "\n";
        return status;
    };
    try {
        CLI::App app(description, name);
        try {
            declare(app);
            app.parse(argc, argv);
        } catch (const CLI::Success& e) {
            return app.exit(e);
        } catch (const CLI::ParseError& e) {
            return failed(std::string(e.what()) + " (see --help)", 2);
        }
        return body();
    } catch (const BadInput& e) {
        return failed(e.what(), 2);
    } catch (const std::exception& e) {
        return failed(e.what(), EXIT_FAILURE);
    }
}
