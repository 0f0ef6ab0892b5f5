#include "HelpFormatter.h"

#include <cctype>
#include <utility>

namespace pos {

HelpFormatter::HelpFormatter() {
    column_width(30);
    label("SUBCOMMAND", "COMMAND");
    label("Positionals", "Arguments");
}

std::string HelpFormatter::make_help(const CLI::App* command, std::string name, CLI::AppFormatMode mode) const {
    std::string help = Formatter::make_help(command, std::move(name), mode);
    // There is a blank line too much between groups, and at the end.
    help.pop_back();
    return CLI::detail::find_and_replace(help, "\n\n\n", "\n\n");
}

std::string HelpFormatter::make_description(const CLI::App* command) const {
    std::string text = command->get_description() + ".\n\n";
    text.front() = static_cast<char>(std::toupper(static_cast<unsigned char>(text.front())));
    return text;
}

std::string HelpFormatter::make_option_name(const CLI::Option* option, bool isPositional) const {
    return CLI::detail::find_and_replace(Formatter::make_option_name(option, isPositional), ",", ", ");
}

std::string HelpFormatter::make_option_opts(const CLI::Option* option) const {
    // What a validator says about itself stands behind a colon.
    const std::string type = CLI::detail::split(option->get_type_name(), ':').front();
    return type.empty() ? "" : ' ' + type;
}

std::string HelpFormatter::make_option_desc(const CLI::Option* option) const {
    const std::string byDefault = option->get_default_str();
    return option->get_description() + (byDefault.empty() ? "" : " [" + byDefault + ']');
}

} // namespace pos
