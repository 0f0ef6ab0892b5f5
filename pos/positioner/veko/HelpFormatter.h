/**
 * @file
 * How --help looks.
 */
#ifndef POS_HELPFORMATTER_H
#define POS_HELPFORMATTER_H

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <string>

namespace pos {

/**
 * Lists each option in two columns, its default in brackets behind its text:
 *
 *     -c, --config_file FILE      configuration file [:/configure.xml]
 *     --format text|json          form of what is found [text]
 *
 * A text of 50 characters, with its default, fits into the 80 columns of a terminal. Completion and manual pages are
 * made from this form.
 */
class HelpFormatter : public CLI::Formatter {
public:
    HelpFormatter();

    std::string make_help(const CLI::App* command, std::string name, CLI::AppFormatMode mode) const override;
    std::string make_description(const CLI::App* command) const override;
    std::string make_option_name(const CLI::Option* option, bool isPositional) const override;
    std::string make_option_opts(const CLI::Option* option) const override;
    std::string make_option_desc(const CLI::Option* option) const override;
};

} // namespace pos

#endif
